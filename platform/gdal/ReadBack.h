// A vector file, read back and compared with what was put into it.
#pragma once

#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "platform/gdal/FieldValues.h"

class OGRGeometry;
class OGRSpatialReference;

namespace orvo::gdal {

struct WrittenField {
    std::string name;     ///< in the source
    std::string written;  ///< in the file
    ValueKind kind;       ///< in the source
    ValueSum values = {};
};

struct WrittenContent {
    std::vector<WrittenField> fields;
    std::int64_t features = 0;
    std::int64_t vertices = 0;
};

/// What a file that is read back does not hold as it was put in.
struct Changes {
    std::set<int> values, missing;  ///< numbers of fields in the content
    /// For users: what fields "have" or "are", with their names.
    std::map<std::string, std::set<std::string>> fields;
    std::set<std::string> others;  ///< likewise of the tiles

    bool IsEmpty() const { return fields.empty() && others.empty(); }
    void Add(const Changes& more);
};

/// Reads the file feature by feature: a count in its header says nothing of what stands behind it. Fails with
/// number 57 where it does not give all features back, each with a geometry.
/// @param format its name, for messages @param system what the source has; null for none
Changes ReadBack(const std::string& path, const std::string& format, const OGRSpatialReference* system,
                 const WrittenContent& content);

std::int64_t VertexCount(const OGRGeometry* geometry);

}  // namespace orvo::gdal
