#include "platform/windows/automation/Automation.h"

// The identifiers of dispex.h are in no library: this file defines them.
// clang-format off
#include <initguid.h>
#include <dispex.h>
// clang-format on
#include <objbase.h>

#include <algorithm>

#include "platform/windows/system/WideText.h"

namespace orvo::windows {
namespace {

constexpr IID kNoId{};
constexpr HRESULT kRuntimeCodes = static_cast<HRESULT>(0x800A0000);

/// Frees a text of the system's automation heap.
class Text {
  public:
    Text() = default;
    explicit Text(const std::wstring& text)
        : text_(::SysAllocStringLen(text.data(), static_cast<UINT>(text.size()))) {}
    ~Text() { ::SysFreeString(text_); }
    Text(const Text&) = delete;
    Text& operator=(const Text&) = delete;
    BSTR Get() const { return text_; }
    BSTR* Out() { return &text_; }
    std::string Content() const {
        return text_ == nullptr ? std::string() : Utf8({text_, ::SysStringLen(text_)});
    }

  private:
    BSTR text_ = nullptr;
};

/// The runtime's failure that a code of the system means; 0 where it means none.
Long Meaning(HRESULT result) {
    switch (result) {
        case DISP_E_UNKNOWNNAME:
        case DISP_E_MEMBERNOTFOUND:
            return static_cast<Long>(Fault::PropertyNotSupported);
        case DISP_E_TYPEMISMATCH:
        case E_NOINTERFACE:
            return static_cast<Long>(Fault::TypeMismatch);
        case DISP_E_OVERFLOW:
            return static_cast<Long>(Fault::Overflow);
        case DISP_E_BADINDEX:
            return static_cast<Long>(Fault::SubscriptOutOfRange);
        case DISP_E_DIVBYZERO:
            return static_cast<Long>(Fault::DivisionByZero);
        case E_OUTOFMEMORY:
            return static_cast<Long>(Fault::OutOfMemory);
        case E_INVALIDARG:
            return static_cast<Long>(Fault::InvalidProcedureCall);
        default:
            return 0;
    }
}

/// Whether a code carries a number of the runtime.
bool IsRuntimeCode(HRESULT result) {
    return (result & static_cast<HRESULT>(0xFFFF0000)) == kRuntimeCodes;
}

[[noreturn]] void Fail(HRESULT result, const std::string& about) {
    const Long number = NumberOf(result);
    if (Meaning(result) != 0 || IsRuntimeCode(result))
        throw RuntimeError(number, std::string(FaultText(static_cast<Fault>(number))) + ": " + about);
    throw RuntimeError(number, SystemText(static_cast<DWORD>(result)) + ": " + about);
}

/// Fails with what a callee said about its failure. Some return their own code and say the rest all the same.
[[noreturn]] void Fail(HRESULT result, EXCEPINFO& exception, const std::string& about) {
    if (exception.pfnDeferredFillIn != nullptr) exception.pfnDeferredFillIn(&exception);
    Text source, description, help;
    *source.Out() = exception.bstrSource;
    *description.Out() = exception.bstrDescription;
    *help.Out() = exception.bstrHelpFile;
    const HRESULT code = result == DISP_E_EXCEPTION && exception.scode != 0 ? exception.scode : result;
    const Long number = exception.wCode != 0 ? exception.wCode : NumberOf(code);
    const std::string text = description.Content();
    if (!text.empty()) throw RuntimeError(number, text);
    if (exception.wCode != 0)
        throw RuntimeError(number, std::string(FaultText(static_cast<Fault>(number))) + ": " + about);
    Fail(code, about);
}

/// Script classes are asked through IDispatchEx: they answer nothing else.
struct Target {
    Ref<IDispatch> plain;
    Ref<IDispatchEx> extended;

    explicit Target(const Ref<IDispatch>& object)
        : plain(object), extended(Query<IDispatchEx>(object.Get(), IID_IDispatchEx)) {}

    HRESULT Find(const wchar_t* member, DISPID& id) const {
        const Text name{std::wstring(member)};
        HRESULT result = E_NOTIMPL;
        if (extended) result = extended->GetDispID(name.Get(), fdexNameCaseInsensitive, &id);
        if (result != E_NOTIMPL) return result;
        LPOLESTR names[] = {name.Get()};
        return plain->GetIDsOfNames(kNoId, names, 1, LOCALE_USER_DEFAULT, &id);
    }
    HRESULT Invoke(DISPID id, WORD kind, DISPPARAMS& arguments, VARIANT* result, EXCEPINFO& exception) const {
        HRESULT done = E_NOTIMPL;
        if (extended) {
            done = extended->InvokeEx(id, LOCALE_USER_DEFAULT, kind, &arguments, result, &exception, nullptr);
        }
        if (done != E_NOTIMPL) return done;
        UINT at = 0;
        return plain->Invoke(id, kNoId, LOCALE_USER_DEFAULT, kind, &arguments, result, &exception, &at);
    }
};

}  // namespace

Long NumberOf(HRESULT result) {
    if (const Long meaning = Meaning(result)) return meaning;
    if (IsRuntimeCode(result)) return result & 0xFFFF;
    return result;
}

HRESULT CodeOf(Long number) {
    return number < 0 ? number : kRuntimeCodes | (number & 0xFFFF);
}

void Require(HRESULT result, const std::string& about) {
    if (FAILED(result)) Fail(result, about);
}

void RequireCall(const std::function<HRESULT()>& call, const std::string& about) {
    ::SetErrorInfo(0, nullptr);  // what is found there afterwards is of this call
    const HRESULT result = call();
    if (SUCCEEDED(result)) return;
    Ref<IErrorInfo> said;
    if (::GetErrorInfo(0, said.Out()) == S_OK && said) {
        Text description;
        if (SUCCEEDED(said->GetDescription(description.Out())) && !description.Content().empty())
            throw RuntimeError(NumberOf(result), description.Content());
    }
    Fail(result, about);
}

Value::Value(Long number) : Value() {
    variant_.vt = VT_I4;
    variant_.lVal = number;
}

Value::Value(Integer number) : Value() {
    variant_.vt = VT_I2;
    variant_.iVal = number;
}

Value::Value(double number) : Value() {
    variant_.vt = VT_R8;
    variant_.dblVal = number;
}

Value::Value(bool condition) : Value() {
    variant_.vt = VT_BOOL;
    variant_.boolVal = condition ? VARIANT_TRUE : VARIANT_FALSE;
}

Value::Value(const std::string& text) : Value() {
    const std::wstring wide = Wide(text);
    variant_.vt = VT_BSTR;
    variant_.bstrVal = ::SysAllocStringLen(wide.data(), static_cast<UINT>(wide.size()));
    if (variant_.bstrVal == nullptr) throw std::bad_alloc();
}

Value::Value(IDispatch* object) : Value() {
    variant_.vt = VT_DISPATCH;
    variant_.pdispVal = object;
    if (object != nullptr) object->AddRef();
}

Value::Value(const Value& other) : Value() {
    VARIANT source = other.variant_;
    Require(::VariantCopy(&variant_, &source), "a value");
}

Value::Value(Value&& other) noexcept : variant_(other.variant_) {
    ::VariantInit(&other.variant_);
}

Value& Value::operator=(Value other) noexcept {
    std::swap(variant_, other.variant_);
    return *this;
}

Value Value::Adopt(IDispatch* object) {
    Value adopted;
    adopted.variant_.vt = VT_DISPATCH;
    adopted.variant_.pdispVal = object;
    return adopted;
}

Value Value::ByReference(Value& to) {
    Value reference;
    reference.variant_.vt = static_cast<VARTYPE>(VT_BYREF | to.variant_.vt);
    reference.variant_.byref = &to.variant_.llVal;  // every member of the union begins there
    return reference;
}

Value Value::Copy(const VARIANT& variant) {
    Value copy;
    VARIANT source = variant;
    Require(::VariantCopyInd(&copy.variant_, &source), "an argument");
    return copy;
}

bool Value::IsMissing() const {
    return variant_.vt == VT_EMPTY || (variant_.vt == VT_ERROR && variant_.scode == DISP_E_PARAMNOTFOUND);
}

Value Value::As(VARTYPE type) const {
    Value converted;
    VARIANT source = variant_;
    Require(::VariantChangeTypeEx(&converted.variant_, &source, LOCALE_INVARIANT, 0, type), "a value");
    return converted;
}

Long Value::AsLong() const {
    return As(VT_I4).variant_.lVal;
}

double Value::AsDouble() const {
    return As(VT_R8).variant_.dblVal;
}

bool Value::AsBool() const {
    return As(VT_BOOL).variant_.boolVal != VARIANT_FALSE;
}

std::string Value::AsText() const {
    const Value text = As(VT_BSTR);
    return text.variant_.bstrVal == nullptr
               ? std::string()
               : Utf8({text.variant_.bstrVal, ::SysStringLen(text.variant_.bstrVal)});
}

Ref<IDispatch> Value::AsObject() const {
    if (variant_.vt == VT_EMPTY || variant_.vt == VT_NULL) return {};
    return Ref<IDispatch>(As(VT_DISPATCH).variant_.pdispVal);
}

VARIANT* Value::Out() {
    ::VariantClear(&variant_);
    return &variant_;
}

VARIANT Value::Detach() {
    const VARIANT given = variant_;
    ::VariantInit(&variant_);
    return given;
}

bool Automation::Has(const wchar_t* member) const {
    DISPID id = DISPID_UNKNOWN;
    return object_ && SUCCEEDED(Target(object_).Find(member, id));
}

Value Automation::Get(const wchar_t* property) const {
    std::vector<Value> none;
    return Invoke(property, DISPATCH_PROPERTYGET, none);
}

void Automation::Put(const wchar_t* property, Value value) const {
    const WORD kind = value.Raw().vt == VT_DISPATCH ? DISPATCH_PROPERTYPUTREF : DISPATCH_PROPERTYPUT;
    std::vector<Value> arguments;
    arguments.push_back(std::move(value));
    Invoke(property, kind, arguments);
}

Value Automation::Call(const wchar_t* method, std::vector<Value> arguments) const {
    std::reverse(arguments.begin(), arguments.end());
    return Invoke(method, DISPATCH_METHOD, arguments);
}

/// @param arguments last one first
Value Automation::Invoke(const wchar_t* member, WORD kind, std::vector<Value>& arguments) const {
    if (!object_) throw RuntimeError(Fault::ObjectNotSet);
    const Target target(object_);
    const std::string name = Utf8(member);
    DISPID id = DISPID_UNKNOWN;
    HRESULT done = target.Find(member, id);
    if (FAILED(done)) Fail(done, name);
    std::vector<VARIANT> raw;  // borrowed from the arguments
    raw.reserve(arguments.size());
    for (const Value& argument : arguments) raw.push_back(argument.Raw());
    const bool puts = (kind & (DISPATCH_PROPERTYPUT | DISPATCH_PROPERTYPUTREF)) != 0;
    DISPID put = DISPID_PROPERTYPUT;
    DISPPARAMS parameters{raw.data(), puts ? &put : nullptr, static_cast<UINT>(raw.size()), puts ? 1U : 0U};
    EXCEPINFO exception{};
    Value result;
    VARIANT* const out = puts ? nullptr : &result.Raw();
    done = target.Invoke(id, kind, parameters, out, exception);
    // Some objects know a function only as a property that takes arguments, or the other way round.
    if (done == DISP_E_MEMBERNOTFOUND && !puts)
        done = target.Invoke(id, DISPATCH_METHOD | DISPATCH_PROPERTYGET, parameters, out, exception);
    if (FAILED(done)) Fail(done, exception, name);
    return result;
}

Automation CreateByName(const wchar_t* progId) {
    CLSID id{};
    if (FAILED(::CLSIDFromProgID(progId, &id))) return {};
    Ref<IDispatch> object;
    const HRESULT done = ::CoCreateInstance(id, nullptr, CLSCTX_INPROC_SERVER | CLSCTX_LOCAL_SERVER,
                                            IID_IDispatch, object.OutVoid());
    if (FAILED(done))
        throw RuntimeError(Fault::CannotCreateObject,
                           Utf8(progId) + " (" + SystemText(static_cast<DWORD>(done)) + ")");
    return Automation(object.Get());
}

}  // namespace orvo::windows
