// Arguments by reference: the value behind the pointer, where there is one.
#pragma once

#include "com/orvo_tile/Automation.h"
#include "platform/windows/automation/HostObjects.h"

namespace orvo::com {

/// A null pointer stands for an argument left out.
template <class Value>
Value ValueOf(const Value* pointer) {
    return pointer == nullptr ? Value{} : *pointer;
}

/// A client's number for the time of a call. The variable gets it back however the call ends.
class Number {
  public:
    explicit Number(LONG& variable) : value(variable), variable_(variable) {}
    ~Number() { variable_ = value; }
    Number(const Number&) = delete;
    Number& operator=(const Number&) = delete;

    Long value;

  private:
    LONG& variable_;
};

inline std::shared_ptr<orvo::IStatusDisplay> StatusOf(::IStatusDisplay** reference) {
    return windows::StatusDisplayOf(ValueOf(reference), __uuidof(::IStatusDisplay));
}

}  // namespace orvo::com
