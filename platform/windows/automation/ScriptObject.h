// Automation objects of our own: members are told by a table of names.
#pragma once

#include <functional>
#include <vector>

#include "platform/windows/automation/Automation.h"
#include "platform/windows/automation/Counted.h"

namespace orvo::windows {

/// Arguments of a call, first one first.
class Arguments {
  public:
    /// @param references what the caller handed over, references unresolved, last one first
    explicit Arguments(const DISPPARAMS& parameters);
    std::size_t Count() const { return values_.size(); }
    /// A missing one fails with number 450.
    const Value& At(std::size_t index) const;
    /// Writes an argument back that was handed over by reference; without effect on one by value.
    void WriteBack(std::size_t index, const Value& value) const;

  private:
    std::vector<Value> values_;
    std::vector<VARIANT*> given_;
};

struct Member {
    const wchar_t* name;
    /// Reads a property or calls a method.
    std::function<Value(const Arguments&)> call;
    /// Writes a property; empty where it is read only.
    std::function<void(const Value&)> put = {};
    /// A number with a meaning of its own (DISPID_VALUE, DISPID_NEWENUM); by default the table's.
    DISPID id = DISPID_UNKNOWN;
};

/// Member numbers follow the table, from 1.
class ScriptObject : public Counted<IDispatch> {
  public:
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID id, void** object) override;
    HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) override;
    HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT index, LCID locale, ITypeInfo** info) override;
    HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID reserved, LPOLESTR* names, UINT count, LCID locale,
                                            DISPID* ids) override;
    HRESULT STDMETHODCALLTYPE Invoke(DISPID id, REFIID reserved, LCID locale, WORD kind,
                                     DISPPARAMS* parameters, VARIANT* result, EXCEPINFO* exception,
                                     UINT* argument) override;

  protected:
    void Add(Member member) { members_.push_back(std::move(member)); }

  private:
    const Member* Find(DISPID id) const;
    std::vector<Member> members_;
};

/// Reads a property that takes no arguments.
template <class Get>
Member Property(const wchar_t* name, Get get) {
    return {name, [get](const Arguments&) { return Value(get()); }};
}
template <class Get, class Put>
Member Property(const wchar_t* name, Get get, Put put) {
    return {name, [get](const Arguments&) { return Value(get()); }, put};
}

}  // namespace orvo::windows
