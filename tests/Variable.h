// An environment variable for the length of a test.
#pragma once

#include <cstdlib>
#include <optional>
#include <string>

namespace orvo {

class Variable {
  public:
    /// @param value null takes the variable away
    Variable(const char* name, const char* value) : name_(name) {
        if (const char* old = std::getenv(name)) old_ = old;
        Set(value);
    }
    ~Variable() { Set(old_ ? old_->c_str() : nullptr); }
    Variable(const Variable&) = delete;
    Variable& operator=(const Variable&) = delete;

  private:
    void Set(const char* value) { value == nullptr ? ::unsetenv(name_) : ::setenv(name_, value, 1); }

    const char* name_;
    std::optional<std::string> old_;
};

}  // namespace orvo
