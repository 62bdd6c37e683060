// The one error type that the component and every adapter throw.
#pragma once

#include <exception>
#include <string>
#include <utility>

#include "platform/Types.h"

namespace orvo {

/// The runtime's own failures, by number. A platform call may carry any other number.
enum class Fault : Long {
    InvalidProcedureCall = 5,
    Overflow = 6,
    OutOfMemory = 7,
    SubscriptOutOfRange = 9,
    DivisionByZero = 11,
    TypeMismatch = 13,
    UserInterrupt = 18,
    FileNotFound = 53,
    DeviceIOError = 57,
    DiskFull = 61,
    PermissionDenied = 70,
    PathFileAccess = 75,
    PathNotFound = 76,
    ObjectNotSet = 91,
    ForLoopNotInitialized = 92,
    ResourceNotFound = 326,
    FormAlreadyDisplayed = 400,
    CannotCreateObject = 429,
    PropertyNotSupported = 438,
    AutomationError = 440,
    DuplicateKey = 457,
    PrinterError = 482,
    CannotOpenClipboard = 521,
};

/// The usual English text of a runtime failure, without a full stop.
inline const char* FaultText(Fault fault) {
    switch (fault) {
        case Fault::InvalidProcedureCall:
            return "Invalid procedure call or argument";
        case Fault::Overflow:
            return "Overflow";
        case Fault::OutOfMemory:
            return "Out of memory";
        case Fault::SubscriptOutOfRange:
            return "Subscript out of range";
        case Fault::DivisionByZero:
            return "Division by zero";
        case Fault::TypeMismatch:
            return "Type mismatch";
        case Fault::UserInterrupt:
            return "User interrupt occurred";
        case Fault::FileNotFound:
            return "File not found";
        case Fault::DeviceIOError:
            return "Device I/O error";
        case Fault::DiskFull:
            return "Disk full";
        case Fault::PermissionDenied:
            return "Permission denied";
        case Fault::PathFileAccess:
            return "Path/File access error";
        case Fault::PathNotFound:
            return "Path not found";
        case Fault::ObjectNotSet:
            return "Object variable or With block variable not set";
        case Fault::ForLoopNotInitialized:
            return "For loop not initialized";
        case Fault::ResourceNotFound:
            return "Resource not found";
        case Fault::FormAlreadyDisplayed:
            return "Form already displayed; can't show modally";
        case Fault::CannotCreateObject:
            return "ActiveX component can't create object";
        case Fault::PropertyNotSupported:
            return "Object doesn't support this property or method";
        case Fault::AutomationError:
            return "Automation error";
        case Fault::DuplicateKey:
            return "This key is already associated with an element of this collection";
        case Fault::PrinterError:
            return "Printer error";
        case Fault::CannotOpenClipboard:
            return "Can't open Clipboard";
    }
    return "Application-defined or object-defined error";
}

/// A numbered failure with a description, as the error dialog shows it.
class RuntimeError : public std::exception {
  public:
    RuntimeError(Long number, std::string description)
        : number_(number), description_(std::move(description)) {}
    explicit RuntimeError(Fault fault) : RuntimeError(static_cast<Long>(fault), FaultText(fault)) {}
    /// The runtime's text followed by what it was about, for example a path.
    RuntimeError(Fault fault, const std::string& about)
        : RuntimeError(static_cast<Long>(fault), std::string(FaultText(fault)) + ": " + about) {}

    Long Number() const noexcept { return number_; }
    const std::string& Description() const noexcept { return description_; }
    const char* what() const noexcept override { return description_.c_str(); }

  private:
    Long number_;
    std::string description_;
};

/// The object behind a reference; a call on an empty reference fails with number 91.
template <class Pointer>
decltype(auto) Object(const Pointer& reference) {
    if (!reference) throw RuntimeError(Fault::ObjectNotSet);
    return *reference;
}

}  // namespace orvo
