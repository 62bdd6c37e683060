// GeoJSON as text.
#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "tiling/vector/geometry/Shape.h"

class OGRFeature;

namespace orvo::tiling {

/// The beginning of a record: the feature's own properties and its id, with the comma that the next property
/// needs.
std::string FeatureHead(const OGRFeature& feature, const std::string& idField);

/// A geometry object. Coordinates in their shortest form that reads back the same, with heights where there
/// are.
void AppendGeometry(std::string& text, const geos::Shape& shape);

/// What reads a number of records and hands them out in chunks; each record is ",\n" and a feature.
using RecordSource = std::function<void(const std::function<void(std::string_view chunk)>& take)>;

/// Writes a feature collection; write, flush and close are checked. Fails with RunError.
/// @param system the name of the coordinate system, see ReferenceSystem.h
void WriteFeatures(const std::string& path, const std::string& name, const std::string& system,
                   const RecordSource& records);

}  // namespace orvo::tiling
