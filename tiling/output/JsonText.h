// JSON as this tree writes it.
#pragma once

#include <nlohmann/json.hpp>
#include <string>

namespace orvo::tiling {

/// Members stay in the order they were added.
using Json = nlohmann::ordered_json;

/// Bytes that are no UTF-8 become U+FFFD. @param indent spaces a level; −1 for one line
inline std::string TextOf(const Json& json, int indent = -1) {
    return json.dump(indent, ' ', false, Json::error_handler_t::replace);
}

/// The text, or null for an empty one.
inline Json OrNull(const std::string& text) {
    return text.empty() ? Json(nullptr) : Json(text);
}

}  // namespace orvo::tiling
