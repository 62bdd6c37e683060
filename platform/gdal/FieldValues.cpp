#include "platform/gdal/FieldValues.h"

#include <cpl_conv.h>
#include <cpl_string.h>
#include <ogr_core.h>
#include <ogr_feature.h>

#include <charconv>
#include <cmath>
#include <functional>
#include <nlohmann/json.hpp>
#include <optional>

#include "platform/gdal/Attributes.h"

namespace orvo::gdal {
namespace {

template <class Value>
std::optional<Value> Parsed(const std::string& text) {
    Value value{};
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (text.empty() || error != std::errc() || end != text.data() + text.size()) return std::nullopt;
    return value;
}

std::string PlainWhole(const OGRFeature& feature, int i, OGRFieldType type) {
    if (type == OFTInteger || type == OFTInteger64) return std::to_string(feature.GetFieldAsInteger64(i));
    if (type == OFTReal) {
        const double value = feature.GetFieldAsDouble(i);
        constexpr double kExact = 9007199254740992;  // 2^53: above, neighbours cannot be told apart
        if (value == std::trunc(value) && std::abs(value) <= kExact)
            return std::to_string(static_cast<std::int64_t>(value));
        return CPLSPrintf("%.17g", value);
    }
    std::string text = feature.GetFieldAsString(i);
    if (text == "true" || text == "false") return text == "true" ? "1" : "0";
    const auto number = Parsed<std::int64_t>(text);
    return number ? std::to_string(*number) : text;
}

std::string PlainReal(const OGRFeature& feature, int i, OGRFieldType type) {
    const bool isNumber = type == OFTInteger || type == OFTInteger64 || type == OFTReal;
    std::string text = isNumber ? "" : feature.GetFieldAsString(i);
    const auto value = isNumber ? feature.GetFieldAsDouble(i) : Parsed<double>(text);
    return value ? CPLSPrintf("%.15g", *value == 0 ? 0.0 : *value) : text;
}

std::string PlainTime(const OGRFeature& feature, int i, OGRFieldType type) {
    OGRField parsed;
    if (type == OFTDate || type == OFTTime || type == OFTDateTime) {
        parsed = *feature.GetRawFieldRef(i);
    } else if (!OGRParseDate(feature.GetFieldAsString(i), &parsed, 0)) {
        return feature.GetFieldAsString(i);
    }
    const auto& d = parsed.Date;
    return CPLSPrintf("%d-%d-%d %d:%d:%.3f %d", d.Year, d.Month, d.Day, d.Hour, d.Minute,
                      static_cast<double>(d.Second), d.TZFlag);
}

/// Without the blanks between tokens.
std::string PlainJson(const std::string& text) {
    return IsJson(text) ? nlohmann::json::parse(text).dump() : text;
}

}  // namespace

ValueKind KindOf(const OGRFieldDefn& field) {
    switch (field.GetType()) {
        case OFTInteger:
        case OFTInteger64:
            return ValueKind::Whole;
        case OFTReal:
            return ValueKind::Real;
        case OFTDate:
        case OFTTime:
        case OFTDateTime:
            return ValueKind::Time;
        case OFTIntegerList:
        case OFTInteger64List:
        case OFTRealList:
        case OFTStringList:
            return ValueKind::List;
        case OFTBinary:
            return ValueKind::Bytes;
        default:
            return field.GetSubType() == OFSTJSON ? ValueKind::Json : ValueKind::Text;
    }
}

const char* NameOf(ValueKind kind) {
    constexpr const char* kNames[] = {"whole number", "number", "date or time", "list",
                                      "bytes",        "text",   "text"};
    return kNames[static_cast<int>(kind)];
}

std::string PlainValue(const OGRFeature& feature, int i, ValueKind kind) {
    if (!feature.IsFieldSetAndNotNull(i)) return "";
    const OGRFieldDefn& field = *feature.GetFieldDefnRef(i);
    switch (kind) {
        case ValueKind::Whole:
            return PlainWhole(feature, i, field.GetType());
        case ValueKind::Real:
            return PlainReal(feature, i, field.GetType());
        case ValueKind::Time:
            return PlainTime(feature, i, field.GetType());
        case ValueKind::List:
            return PlainJson(KindOf(field) == ValueKind::List ? JsonValue(feature, i)
                                                              : feature.GetFieldAsString(i));
        case ValueKind::Json:
            return PlainJson(feature.GetFieldAsString(i));
        default:
            return feature.GetFieldAsString(i);
    }
}

void ValueSum::Add(const std::string& plainValue) {
    sum_ += std::hash<std::string>()(plainValue);
}

}  // namespace orvo::gdal
