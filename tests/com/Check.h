// Checks for the clients: each failing one is named, and the last line holds the counts.
#pragma once

#include <windows.h>
// clang-format off
#include <ole2.h>
// clang-format on

#include <cstdio>
#include <fstream>
#include <iterator>
#include <string>

inline int checks = 0;
inline int failures = 0;

inline void Check(bool holds, const char* what) {
    ++checks;
    if (holds) return;
    ++failures;
    std::printf("FAILED: %s\n", what);
}
#define CHECK(condition) Check(condition, #condition)

inline int Summary() {
    std::printf("checks %d failed %d\n", checks, failures);
    return failures == 0 ? 0 : 1;
}

/// A text of the automation runtime, freed at the end.
class Text {
  public:
    Text() = default;
    explicit Text(const wchar_t* text) : text_(SysAllocString(text)) {}
    Text(const Text&) = delete;
    Text& operator=(const Text&) = delete;
    ~Text() { SysFreeString(text_); }
    BSTR Get() const { return text_; }
    BSTR* Out() {
        SysFreeString(text_);
        text_ = nullptr;
        return &text_;
    }
    bool operator==(const wchar_t* other) const {
        return std::wstring(text_ == nullptr ? L"" : text_) == other;
    }

  private:
    BSTR text_ = nullptr;
};

inline std::wstring TempFolder() {
    wchar_t folder[MAX_PATH];
    GetEnvironmentVariableW(L"TEMP", folder, MAX_PATH);
    return folder;
}

inline std::string FileContent(const std::wstring& path) {
    FILE* file = _wfopen(path.c_str(), L"rb");
    if (file == nullptr) return {};
    std::string content;
    for (int c = std::fgetc(file); c != EOF; c = std::fgetc(file)) content.push_back(static_cast<char>(c));
    std::fclose(file);
    return content;
}

/// The reports of all failures so far.
inline std::string Log() {
    return FileContent(TempFolder() + L"\\Orvo_Tile.EPT");
}
