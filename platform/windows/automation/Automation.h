// Calls on automation objects by name, with failures as runtime errors.
#pragma once

#include <functional>
#include <initializer_list>
#include <memory>
#include <new>
#include <string>
#include <utility>
#include <vector>

#include "platform/RuntimeError.h"
#include "platform/Types.h"
#include "platform/windows/system/Win32.h"

namespace orvo::windows {

/// A counted reference to a COM object.
template <class Interface>
class Ref {
  public:
    Ref() = default;
    /// Shares the object.
    explicit Ref(Interface* object) : object_(object) {
        if (object_ != nullptr) object_->AddRef();
    }
    Ref(const Ref& other) : Ref(other.object_) {}
    Ref(Ref&& other) noexcept : object_(std::exchange(other.object_, nullptr)) {}
    Ref& operator=(Ref other) noexcept {
        std::swap(object_, other.object_);
        return *this;
    }
    ~Ref() {
        if (object_ != nullptr) object_->Release();
    }
    Interface* Get() const { return object_; }
    Interface* operator->() const { return object_; }
    explicit operator bool() const { return object_ != nullptr; }
    /// For a function that hands out a reference.
    Interface** Out() {
        *this = Ref();
        return &object_;
    }
    void** OutVoid() { return reinterpret_cast<void**>(Out()); }
    /// Hands the reference to the caller.
    Interface* Detach() { return std::exchange(object_, nullptr); }

  private:
    Interface* object_ = nullptr;
};

/// Another interface of an object; empty where it has none.
template <class Interface>
Ref<Interface> Query(IUnknown* object, const IID& id) {
    Ref<Interface> found;
    if (object != nullptr && FAILED(object->QueryInterface(id, found.OutVoid()))) return {};
    return found;
}

/// Fails where a call of the system has failed.
void Require(HRESULT result, const std::string& about);

/// Makes a call on an automation object's table of functions; fails with what the object says of its failure.
void RequireCall(const std::function<HRESULT()>& call, const std::string& about);

/// The number of a failed call: that of the runtime where the code holds one, else the code itself.
Long NumberOf(HRESULT result);
/// The code that tells a client of a failure: 0x800A0000 + n for a number n of the runtime, which scripts
/// show as n; any other number is a code already.
HRESULT CodeOf(Long number);

/// Runs what a function that COM calls does: nothing may be thrown out of one.
template <class Work>
HRESULT Guarded(const Work& work) noexcept {
    try {
        return work();
    } catch (const std::bad_alloc&) {
        return E_OUTOFMEMORY;
    } catch (...) {
        return E_UNEXPECTED;
    }
}

/// An owned value of an automation call.
class Value {
  public:
    Value() { ::VariantInit(&variant_); }
    Value(Long number);
    Value(Integer number);
    Value(double number);
    Value(bool condition);
    Value(const std::string& text);
    Value(IDispatch* object);  ///< shares the object; a null pointer stands for "no object"
    Value(const Value& other);
    Value(Value&& other) noexcept;
    Value& operator=(Value other) noexcept;
    ~Value() { ::VariantClear(&variant_); }

    /// Takes the caller's reference over.
    static Value Adopt(IDispatch* object);
    /// A reference to a value, which outlives it: a callee may write back.
    static Value ByReference(Value& to);
    /// A copy of what a caller handed over, references resolved.
    static Value Copy(const VARIANT& variant);

    bool IsMissing() const;  ///< no value at all, or an argument left out
    // Converted as the runtime does; what cannot be converted fails with number 13, too large numbers with 6.
    Long AsLong() const;
    double AsDouble() const;
    bool AsBool() const;
    std::string AsText() const;
    Ref<IDispatch> AsObject() const;  ///< empty for "no object"

    VARIANT* Out();  ///< for a function that hands out a value
    VARIANT& Raw() { return variant_; }
    const VARIANT& Raw() const { return variant_; }
    VARIANT Detach();

  private:
    Value As(VARTYPE type) const;
    VARIANT variant_{};
};

/// A host's object. An empty one fails every call with number 91.
class Automation {
  public:
    Automation() = default;
    explicit Automation(IDispatch* object) : object_(object) {}

    Value Get(const wchar_t* property) const;
    void Put(const wchar_t* property, Value value) const;
    Value Call(const wchar_t* method, std::vector<Value> arguments = {}) const;
    bool Has(const wchar_t* member) const;
    IDispatch* Dispatch() const { return object_.Get(); }

  private:
    Value Invoke(const wchar_t* member, WORD kind, std::vector<Value>& arguments) const;
    Ref<IDispatch> object_;
};

/// A new object of a registered class; empty where no such class is registered, number 429 where it cannot be
/// created.
Automation CreateByName(const wchar_t* progId);

}  // namespace orvo::windows
