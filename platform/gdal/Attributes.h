// The attributes of a feature, as bytes for a while and as JSON for good.
#pragma once

#include <string>
#include <string_view>

class OGRFeature;
class OGRFeatureDefn;

namespace orvo::gdal {

/// All field values as bytes that ReadAttributes understands on the same machine.
std::string WriteAttributes(const OGRFeature& feature);

/// Gives a feature of the same fields the values back. @return the bytes behind the attributes
std::string_view ReadAttributes(std::string_view bytes, OGRFeature& feature);

/// The members of a JSON object, `"name":value` with commas between; empty for a feature without fields.
/// Numbers in their shortest form that reads back the same, dates as ISO 8601 texts, lists as arrays, bytes
/// as hexadecimal digits, JSON texts as what they say; a number that is not finite and what is not set as
/// null.
std::string JsonMembers(const OGRFeature& feature);

/// A text as a JSON string with its quotes; of a text that is not UTF-8, what is not
/// ASCII becomes "?".
std::string JsonText(std::string_view text);
/// The shortest text that reads back the same; null where the number is not finite.
void AppendJson(std::string& text, double number);

/// `wanted`, or with a number behind it where the fields have that name already, whatever the case.
std::string FreeFieldName(const OGRFeatureDefn& fields, const std::string& wanted);

}  // namespace orvo::gdal
