#include "tiling/output/TileNames.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <regex>
#include <utility>

#include "tiling/Errors.h"

namespace orvo::tiling {
namespace {

constexpr std::size_t kLongestName = 200;  ///< bytes; room for extensions in the 255 of usual file systems

std::string Padded(std::int64_t number, std::size_t digits) {
    std::string text = std::to_string(number);
    if (text.size() < digits) text.insert(0, digits - text.size(), '0');
    return text;
}

std::string Number(double value) {
    std::array<char, 400> text{};
    char* const end =
        std::to_chars(text.data(), text.data() + text.size(), value + 0.0, std::chars_format::fixed).ptr;
    return {text.data(), end};
}

/// Calls `literal` for the text between fields and `field` for each field's name. Fails with UsageError.
template <class Literal, class Field>
void Parse(const std::string& pattern, Literal&& literal, Field&& field) {
    for (std::size_t at = 0; at < pattern.size();) {
        const std::size_t open = std::min(pattern.find_first_of("{}", at), pattern.size());
        literal(pattern.substr(at, open - at));
        if (open == pattern.size()) return;
        const std::size_t close = pattern.find('}', open);
        if (pattern[open] == '}' || close == std::string::npos)
            throw UsageError("--tile-names \"" + pattern + "\" has a brace without its partner");
        field(pattern.substr(open + 1, close - open - 1));
        at = close + 1;
    }
}

/// Why a name cannot be one of a file in the output folder; empty where it can.
std::string Fault(const std::string& name) {
    const auto isControl = [](unsigned char c) { return c < 0x20 || c == 0x7f; };
    if (name.empty()) return "is empty";
    if (std::ranges::any_of(name, isControl)) return "holds control characters";
    if (name.find('\\') != std::string::npos) return "holds a backslash";
    for (std::size_t at = 0; at <= name.size();) {
        const std::size_t end = std::min(name.find('/', at), name.size());
        const std::string part = name.substr(at, end - at);
        if (part.empty()) return "has an empty name between slashes";
        if (part.front() == '.') return "has a name that begins with a dot";
        if (part.size() > kLongestName) return "is longer than 200 bytes";
        at = end + 1;
    }
    return "";
}

}  // namespace

TileNames::TileNames(const std::string& pattern, std::string source, std::int64_t rows, std::int64_t columns)
    : pattern_(pattern),
      source_(std::move(source)),
      rowDigits_(std::to_string(rows).size()),
      columnDigits_(std::to_string(columns).size()) {
    constexpr std::array kFields = {"source", "row", "column", "x", "y"};
    Parse(
        pattern, [](const std::string&) {},
        [&](const std::string& field) {
            if (std::ranges::find(kFields, field) == kFields.end())
                throw UsageError("--tile-names \"" + pattern + "\" has the unknown field {" + field +
                                 "}; there are {source}, {row}, {column}, {x} and {y}");
        });
    const std::string fault = Fault(Of({}));
    if (!fault.empty()) throw UsageError("--tile-names \"" + pattern + "\" " + fault);
}

std::string TileNames::Of(const Place& place) const {
    std::string name;
    Parse(
        pattern_, [&](const std::string& literal) { name += literal; },
        [&](const std::string& field) {
            name += field == "source"   ? source_
                    : field == "row"    ? Padded(place.row, rowDigits_)
                    : field == "column" ? Padded(place.column, columnDigits_)
                                        : Number(field == "x" ? place.x : place.y);
        });
    return name;
}

bool TileNames::IsUnique() const {
    return pattern_.find("{row}") != std::string::npos && pattern_.find("{column}") != std::string::npos;
}

std::function<bool(const std::string&)> NamesLike(const std::string& pattern, const std::string& source) {
    std::string expression;
    const auto quoted = [](const std::string& text) {
        return std::regex_replace(text, std::regex(R"([.^$|()\[\]{}*+?\\])"), R"(\$&)");
    };
    Parse(
        pattern, [&](const std::string& literal) { expression += quoted(literal); },
        [&](const std::string& field) {
            expression += field == "source"                     ? quoted(source)
                          : field == "row" || field == "column" ? "[0-9]+"
                                                                : "-?[0-9]+(\\.[0-9]+)?";
        });
    return [matcher = std::regex(expression)](const std::string& name) {
        return Fault(name).empty() && std::regex_match(name, matcher);
    };
}

}  // namespace orvo::tiling
