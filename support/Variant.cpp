#include "support/Variant.h"

#include <optional>
#include <type_traits>

#include "platform/RuntimeError.h"

namespace orvo {
namespace {

std::optional<double> Number(const Variant& value) {
    return std::visit(
        [](const auto& held) -> std::optional<double> {
            using Held = std::decay_t<decltype(held)>;
            if constexpr (std::is_same_v<Held, std::monostate>) return 0.0;
            if constexpr (std::is_same_v<Held, bool>) return held ? -1.0 : 0.0;
            if constexpr (std::is_same_v<Held, Date>) return held.days;
            if constexpr (std::is_arithmetic_v<Held>) return static_cast<double>(held);
            return std::nullopt;
        },
        value);
}

}  // namespace

bool IsLess(const Variant& a, const Variant& b) {
    if (std::holds_alternative<Null>(a) || std::holds_alternative<Null>(b)) return false;
    const auto* textA = std::get_if<std::string>(&a);
    const auto* textB = std::get_if<std::string>(&b);
    const bool emptyA = std::holds_alternative<std::monostate>(a);
    const bool emptyB = std::holds_alternative<std::monostate>(b);
    if (textA != nullptr && (textB != nullptr || emptyB))
        return *textA < (textB != nullptr ? *textB : std::string());
    if (textB != nullptr && emptyA) return !textB->empty();
    if (textA != nullptr || textB != nullptr) return textB != nullptr;
    return *Number(a) < *Number(b);
}

std::string TextOf(const Variant& value) {
    if (std::holds_alternative<std::monostate>(value)) return {};
    const auto* text = std::get_if<std::string>(&value);
    if (text == nullptr) throw RuntimeError(Fault::TypeMismatch);
    return *text;
}

}  // namespace orvo
