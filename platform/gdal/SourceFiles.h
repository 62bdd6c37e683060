// The files that a source is read from.
#pragma once

#include <string>
#include <vector>

class GDALDataset;

namespace orvo::gdal {

/// Files and folders on the disk that a dataset is read from: its own, those that go with them, those behind
/// virtual datasets at any depth, and the containers of names such as GPKG:file:layer or /vsizip/file/member.
/// @param name what it was opened by
std::vector<std::string> SourceFiles(GDALDataset& dataset, const std::string& name);

}  // namespace orvo::gdal
