// Arguments by reference: the value behind the pointer, where there is one.
#pragma once

#include <string>

#include "com/orvo_tile/Interfaces.h"
#include "platform/windows/automation/Automation.h"
#include "platform/windows/automation/HostObjects.h"
#include "platform/windows/system/WideText.h"

namespace orvo::com {

/// A null pointer stands for an argument left out.
template <class Value>
Value ValueOf(const Value* pointer) {
    return pointer == nullptr ? Value{} : *pointer;
}

inline std::string TextOf(BSTR text) {
    return windows::Utf8({text, SysStringLen(text)});
}
inline std::string TextOf(const BSTR* text) {
    return TextOf(ValueOf(text));
}

/// The caller owns the result.
inline BSTR NewBstr(const std::string& text) {
    return windows::Value(text).Detach().bstrVal;
}

/// A client's number for the time of a call. The variable gets it back however the call ends.
class NumberByReference {
  public:
    explicit NumberByReference(LONG& variable) : value(variable), variable_(variable) {}
    ~NumberByReference() { variable_ = value; }
    NumberByReference(const NumberByReference&) = delete;
    NumberByReference& operator=(const NumberByReference&) = delete;

    Long value;

  private:
    LONG& variable_;
};

inline std::shared_ptr<orvo::IStatusDisplay> StatusOf(::IStatusDisplay** reference) {
    return windows::StatusDisplayOf(ValueOf(reference), __uuidof(::IStatusDisplay));
}

}  // namespace orvo::com
