// Values of fields in a form that does not depend on how a format stores them.
#pragma once

#include <cstdint>
#include <string>

class OGRFeature;
class OGRFieldDefn;

namespace orvo::gdal {

enum class ValueKind { Whole, Real, Time, List, Bytes, Json, Text };

ValueKind KindOf(const OGRFieldDefn& field);
/// For users: "whole number", "date or time" and so on.
const char* NameOf(ValueKind kind);

/// The value of the i-th field as one of that kind: 7 for "7", 7.0 and 7; the same date however it is
/// written; real numbers to 15 digits, times to the millisecond. What cannot be read as one of that kind
/// stays as it is; empty for none.
std::string PlainValue(const OGRFeature& feature, int i, ValueKind kind);

/// The sum of what a field holds in many features, in whatever order they come.
class ValueSum {
  public:
    void Add(const std::string& plainValue);
    bool operator==(const ValueSum&) const = default;

  private:
    std::uint64_t sum_ = 0;
};

}  // namespace orvo::gdal
