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

/// Makes all texts of a feature UTF-8, see ValidUtf8. @return the name of the first field that was none;
/// empty where all were
std::string MendTexts(OGRFeature& feature);

/// The members of a JSON object, `"name":value` with commas between; empty for a feature without fields.
/// Numbers in their shortest form that reads back the same, dates as ISO 8601 texts, lists as arrays, bytes
/// as hexadecimal digits, JSON texts as what they say; a number that is not finite and what is not set as
/// null.
std::string JsonMembers(const OGRFeature& feature);

/// The value of a field that is set, as it stands in JsonMembers.
std::string JsonValue(const OGRFeature& feature, int field);

/// A text as a JSON string with its quotes. Bytes that are no UTF-8 become U+FFFD.
std::string JsonText(std::string_view text);
/// Whether a text is JSON to every reader: to the letter, and not nested too deep for their stacks.
bool IsJson(std::string_view text);
/// A text with U+FFFD in place of each sequence of bytes that is no UTF-8, surrogates included (RFC 3629).
std::string ValidUtf8(std::string_view text);
/// The shortest text that reads back the same; null where the number is not finite.
void AppendJson(std::string& text, double number);

/// `wanted`, or with a number behind it where the fields have that name already, whatever the case.
std::string FreeFieldName(const OGRFeatureDefn& fields, const std::string& wanted);

}  // namespace orvo::gdal
