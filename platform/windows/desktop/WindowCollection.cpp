#include "platform/windows/desktop/WindowCollection.h"

#include <array>

namespace orvo::windows {
namespace {

constexpr Long kCount = 4;
using Numbers = std::array<Long, kCount>;

class Enumerator final : public IEnumVARIANT {  // NOLINT(cppcoreguidelines-virtual-class-destructor): final
  public:
    Enumerator(const Numbers& numbers, std::size_t next, ScriptObject* owner)
        : numbers_(numbers), next_(next), owner_(owner) {}

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID id, void** object) override {
        if (object == nullptr) return E_POINTER;
        const bool known = ::IsEqualIID(id, IID_IUnknown) || ::IsEqualIID(id, IID_IEnumVARIANT);
        *object = known ? static_cast<IEnumVARIANT*>(this) : nullptr;
        if (known) AddRef();
        return known ? S_OK : E_NOINTERFACE;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return ++references_; }
    ULONG STDMETHODCALLTYPE Release() override {
        const ULONG left = --references_;
        if (left == 0) delete this;
        return left;
    }
    HRESULT STDMETHODCALLTYPE Next(ULONG wanted, VARIANT* values, ULONG* fetched) override {
        ULONG count = 0;
        for (; count < wanted && next_ < numbers_.size(); ++count)
            values[count] = Value(numbers_.at(next_++)).Detach();
        if (fetched != nullptr) *fetched = count;
        return count == wanted ? S_OK : S_FALSE;
    }
    HRESULT STDMETHODCALLTYPE Skip(ULONG count) override {
        const bool enough = count <= numbers_.size() - next_;
        next_ = enough ? next_ + count : numbers_.size();
        return enough ? S_OK : S_FALSE;
    }
    HRESULT STDMETHODCALLTYPE Reset() override {
        next_ = 0;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE Clone(IEnumVARIANT** copy) override {
        if (copy == nullptr) return E_POINTER;
        *copy = nullptr;
        return Guarded([&] {
            *copy = new Enumerator(numbers_, next_, owner_.Get());
            return S_OK;
        });
    }

  private:
    Numbers numbers_;
    std::size_t next_;
    Ref<ScriptObject> owner_;  ///< keeps the module loaded
    ULONG references_ = 1;
};

class WindowCollection final : public ScriptObject {
  public:
    explicit WindowCollection(const PixelWindow& window)
        : numbers_{window.column, window.row, window.width, window.height} {
        Add(Property(L"Count", [] { return kCount; }));
        Add({L"Item",
             [this](const Arguments& arguments) { return Value(Item(arguments.At(0).AsLong())); },
             {},
             DISPID_VALUE});
        Add({L"_NewEnum", [this](const Arguments&) { return Enumerate(); }, {}, DISPID_NEWENUM});
    }

  private:
    Long Item(Long index) const {
        if (index < 1 || index > kCount) throw RuntimeError(Fault::SubscriptOutOfRange);
        return numbers_.at(static_cast<std::size_t>(index) - 1);
    }
    Value Enumerate() {
        Value value;
        value.Raw().vt = VT_UNKNOWN;
        value.Raw().punkVal = new Enumerator(numbers_, 0, this);
        return value;
    }
    Numbers numbers_;
};

}  // namespace

ScriptObject* NewWindowCollection(const PixelWindow& window) {
    return new WindowCollection(window);
}

PixelWindow WindowOfCollection(IDispatch* collection) {
    const Automation numbers(collection);
    if (numbers.Get(L"Count").AsLong() != kCount) throw RuntimeError(Fault::SubscriptOutOfRange);
    const auto item = [&](Long index) { return numbers.Call(L"Item", {index}).AsLong(); };
    return {item(1), item(2), item(3), item(4)};
}

}  // namespace orvo::windows
