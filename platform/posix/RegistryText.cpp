#include "platform/posix/RegistryText.h"

#include <charconv>
#include <optional>
#include <utility>
#include <vector>

#include "platform/System.h"
#include "support/Text.h"

namespace orvo::posix {
namespace {

constexpr Long kTypeExpandString = 2;
constexpr Long kTypeDword = 4;
constexpr Long kTypeMultiString = 7;
constexpr std::string_view kBlanks = " \t\r";

std::string_view Trim(std::string_view text) {
    const auto first = text.find_first_not_of(kBlanks);
    if (first == std::string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

void AppendUtf8(std::string& text, char32_t c) {
    const auto put = [&](char32_t byte) { text += static_cast<char>(static_cast<unsigned char>(byte)); };
    if (c < 0x80) return put(c);
    if (c < 0x800) {
        put(0xC0 | (c >> 6));
    } else {
        if (c < 0x10000) {
            put(0xE0 | (c >> 12));
        } else {
            put(0xF0 | (c >> 18));
            put(0x80 | ((c >> 12) & 0x3F));
        }
        put(0x80 | ((c >> 6) & 0x3F));
    }
    put(0x80 | (c & 0x3F));
}

unsigned char Byte(std::string_view bytes, std::size_t at) {
    return static_cast<unsigned char>(bytes[at]);
}

/// UTF-16, low byte first. A lone surrogate becomes U+FFFD; an odd last byte is dropped.
std::string FromUtf16(std::string_view bytes) {
    std::string text;
    const auto unit = [&](std::size_t at) -> char32_t {
        return at + 1 < bytes.size() ? static_cast<char32_t>(Byte(bytes, at) | (Byte(bytes, at + 1) << 8))
                                     : 0;
    };
    for (std::size_t at = 0; at + 1 < bytes.size(); at += 2) {
        char32_t c = unit(at);
        if (c >= 0xD800 && c < 0xE000) {
            const char32_t low = unit(at + 2);
            const bool pair = c < 0xDC00 && low >= 0xDC00 && low < 0xE000;
            c = pair ? 0x10000 + ((c - 0xD800) << 10) + (low - 0xDC00) : 0xFFFD;
            if (pair) at += 2;
        }
        AppendUtf8(text, c);
    }
    return text;
}

bool IsUtf8(std::string_view bytes) {
    std::size_t following = 0;
    for (const char c : bytes) {
        const auto byte = static_cast<unsigned char>(c);
        const bool continues = (byte & 0xC0) == 0x80;
        if (continues != (following > 0) || byte > 0xF4) return false;
        if (continues) --following;
        if (byte >= 0xC0) following = byte >= 0xF0 ? 3U : byte >= 0xE0 ? 2U : 1U;
    }
    return following == 0;
}

/// Text of the older format has no fixed code page: UTF-8 where it reads as such, else Latin-1.
std::string FromAnsi(std::string_view bytes) {
    if (IsUtf8(bytes)) return std::string(bytes);
    std::string text;
    for (std::size_t at = 0; at < bytes.size(); ++at) AppendUtf8(text, Byte(bytes, at));
    return text;
}

std::string Decode(std::string_view bytes) {
    if (bytes.starts_with("\xFF\xFE")) return FromUtf16(bytes.substr(2));
    if (bytes.starts_with("\xEF\xBB\xBF")) return std::string(bytes.substr(3));
    return FromAnsi(bytes);
}

/// Takes a quoted text off the front of `line`, its escapes resolved; nothing where its end is missing.
std::optional<std::string> TakeQuoted(std::string_view& line) {
    std::string text;
    for (std::size_t at = 1; at < line.size(); ++at) {
        if (line[at] == '"') {
            line.remove_prefix(at + 1);
            return text;
        }
        if (line[at] == '\\' && at + 1 < line.size()) ++at;
        text += line[at];
    }
    return std::nullopt;
}

template <class Number>
std::optional<Number> HexNumber(std::string_view digits) {
    Number number = 0;
    digits = Trim(digits);
    const char* const end = digits.data() + digits.size();
    const auto [behind, error] = std::from_chars(digits.data(), end, number, 16);
    if (error != std::errc() || behind != end) return std::nullopt;
    return number;
}

/// "4d,5a,": bytes in hexadecimal; nothing where one of them is none.
std::optional<std::string> HexBytes(std::string_view list) {
    std::string bytes;
    while (!Trim(list).empty()) {
        const auto comma = std::min(list.find(','), list.size());
        const auto byte = HexNumber<unsigned char>(list.substr(0, comma));
        if (!byte) return std::nullopt;
        bytes += static_cast<char>(*byte);
        list.remove_prefix(std::min(comma + 1, list.size()));
    }
    return bytes;
}

class Parser {
  public:
    explicit Parser(std::string text) : text_(std::move(text)) {}

    RegistryKeys Run() {
        rest_ = text_;
        while (!rest_.empty()) {
            std::string line(NextLine());
            if (line.starts_with('[')) {
                Section(line);
            } else if (line == "REGEDIT4") {
                wide_ = false;
            } else if (key_ != nullptr && (line.starts_with('"') || line.starts_with('@'))) {
                const bool hex = line.find("=hex") != std::string::npos;
                while (hex && line.ends_with('\\') && !rest_.empty()) {
                    line.pop_back();
                    line += NextLine();
                }
                Value(line);
            }
        }
        return std::move(keys_);
    }

  private:
    std::string_view NextLine() {
        const auto end = std::min(rest_.find('\n'), rest_.size());
        const auto line = Trim(rest_.substr(0, end));
        rest_.remove_prefix(std::min(end + 1, rest_.size()));
        return line;
    }

    /// "[KEY]" begins a key, "[-KEY]" removes it with all below it.
    void Section(std::string_view line) {
        key_ = nullptr;
        if (!line.ends_with(']')) return;
        std::string path = FoldName(line.substr(1, line.size() - 2));
        if (!path.starts_with('-')) {
            if (!path.empty()) key_ = &AddKey(keys_, path);
            return;
        }
        path.erase(0, 1);
        std::erase_if(keys_, [&](const auto& entry) {
            return entry.first == path || entry.first.starts_with(path + "\\");
        });
    }

    void Value(std::string_view line) {
        std::optional<std::string> name = "";
        if (line.starts_with('"')) {
            name = TakeQuoted(line);
        } else {
            line.remove_prefix(1);
        }
        line = Trim(line);
        if (!name || !line.starts_with('=')) return;
        line = Trim(line.substr(1));
        if (line == "-") {
            key_->erase(FoldName(*name));
        } else if (auto value = Data(line)) {
            (*key_)[FoldName(*name)] = std::move(*value);
        }
    }

    std::optional<RegistryValue> Data(std::string_view text) const {
        if (text.starts_with('"')) {
            auto quoted = TakeQuoted(text);
            if (!quoted) return std::nullopt;
            return RegistryValue{IRegistry::kTypeString, *quoted + '\0'};
        }
        const auto colon = text.find(':');
        if (colon == std::string_view::npos) return std::nullopt;
        const std::string kind = LCase(text.substr(0, colon));
        text.remove_prefix(colon + 1);
        if (kind == "dword") return Dword(text);
        if (kind == "hex") return Bytes(IRegistry::kTypeBinary, text);
        if (!kind.starts_with("hex(") || !kind.ends_with(')')) return std::nullopt;
        const auto type = HexNumber<Long>(std::string_view(kind).substr(4, kind.size() - 5));
        return type ? Bytes(*type, text) : std::nullopt;
    }

    static std::optional<RegistryValue> Dword(std::string_view digits) {
        const auto number = HexNumber<std::uint32_t>(digits);
        if (!number) return std::nullopt;
        RegistryValue value{kTypeDword, {}};
        for (unsigned shift = 0; shift < 32; shift += 8) value.data += static_cast<char>(*number >> shift);
        return value;
    }

    std::optional<RegistryValue> Bytes(Long type, std::string_view list) const {
        auto bytes = HexBytes(list);
        if (!bytes) return std::nullopt;
        const bool isText =
            type == IRegistry::kTypeString || type == kTypeExpandString || type == kTypeMultiString;
        if (isText) *bytes = wide_ ? FromUtf16(*bytes) : FromAnsi(*bytes);
        return RegistryValue{type, std::move(*bytes)};
    }

    std::string text_;
    std::string_view rest_;
    RegistryKeys keys_;
    RegistryKey* key_ = nullptr;
    bool wide_ = true;  ///< texts given as bytes are UTF-16
};

}  // namespace

std::string FoldName(std::string_view name) {
    return LCase(name);
}

RegistryKey& AddKey(RegistryKeys& keys, const std::string& foldedPath) {
    for (auto end = foldedPath.find('\\'); end != std::string::npos; end = foldedPath.find('\\', end + 1)) {
        keys.try_emplace(foldedPath.substr(0, end));
    }
    return keys[foldedPath];
}

RegistryKeys ParseRegistry(std::string_view bytes) {
    return Parser(Decode(bytes)).Run();
}

}  // namespace orvo::posix
