// Counted checks of a program that runs under Windows.
#pragma once

#include <filesystem>
#include <functional>
#include <iostream>
#include <source_location>
#include <string>

#include "platform/RuntimeError.h"

namespace orvo::checks {

inline int made = 0;
inline int failed = 0;

inline void Fail(const std::string& what, const std::source_location& at) {
    ++failed;
    std::cout << std::filesystem::path(at.file_name()).filename().string() << ':' << at.line() << ": " << what
              << '\n';
}

inline void Check(bool holds, const std::string& what = "does not hold",
                  std::source_location at = std::source_location::current()) {
    ++made;
    if (!holds) Fail(what, at);
}

template <class A, class B>
void Equal(const A& is, const B& expected, std::source_location at = std::source_location::current()) {
    ++made;
    if (is == expected) return;
    std::cout << is << " instead of " << expected << '\n';
    Fail("not equal", at);
}

/// The statement must fail with that number, and its text must hold `part`.
inline void Fails(Long number, const std::string& part, const std::function<void()>& statement,
                  std::source_location at = std::source_location::current()) {
    ++made;
    try {
        statement();
        Fail("did not fail", at);
    } catch (const RuntimeError& failure) {
        if (failure.Number() != number || failure.Description().find(part) == std::string::npos)
            Fail(std::to_string(failure.Number()) + " " + failure.Description(), at);
    }
}

/// An empty folder of that name below the system's temporary folder, gone at the end.
class Folder {
  public:
    explicit Folder(const std::u8string& name) : path_(std::filesystem::temp_directory_path() / name) {
        std::filesystem::remove_all(path_);
        std::filesystem::create_directories(path_);
    }
    ~Folder() {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }
    Folder(const Folder&) = delete;
    Folder& operator=(const Folder&) = delete;
    /// With "\" between its parts.
    std::string Path() const {
        const std::u8string text = path_.u8string();
        return {text.begin(), text.end()};
    }
    std::string File(const std::string& name) const { return Path() + "\\" + name; }
    std::ptrdiff_t Entries() const { return std::distance(std::filesystem::directory_iterator(path_), {}); }

  private:
    std::filesystem::path path_;
};

/// The program that makes the checks.
std::string Self();

void CheckHostObjects();
void CheckSystem();
void CheckImages();
void CheckUtility();
void CheckDesktop();

/// What the program does when it is started by its own checks: writes, echoes, converts.
int ServeChecks(int count, char** arguments);

}  // namespace orvo::checks
