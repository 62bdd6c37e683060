// The arguments of one call by name, converted to what the member declares.
#pragma once

#include <vector>

#include "com/orvo_tile/Automation.h"
#include "com/orvo_tile/Dispatch.h"

namespace orvo::com {

class Arguments {
  public:
    Arguments(const Member& member, LCID locale);
    ~Arguments();
    Arguments(const Arguments&) = delete;
    Arguments& operator=(const Arguments&) = delete;

    /// Finds and converts the client's arguments, by place or by name.
    /// @param wrongArgument where the offending one stands in the client's list; may be null
    HRESULT Take(const DISPPARAMS& arguments, UINT* wrongArgument);

    UINT Count() const { return static_cast<UINT>(slots_.size()); }
    VARTYPE* Types() { return types_.data(); }
    VARIANTARG** Values() { return values_.data(); }

    /// Stores what the member changed in the client's variables, and moves its result into `result`, which
    /// may be null. A variable that cannot take its value does not keep the others from theirs; the first
    /// such failure is the call's.
    HRESULT GiveBack(VARIANT* result);

  private:
    struct Slot {
        VARIANT value{};            ///< of the declared type
        VARIANT before{};           ///< a copy, for those by reference
        VARIANT passed{};           ///< what the member is called with
        VARIANT* source = nullptr;  ///< the client's argument; null where it was left out
    };

    HRESULT Convert(std::size_t index);
    HRESULT ConvertObject(const VARIANT& given, VARIANT& value) const;
    HRESULT StoreChange(Slot& slot, const Parameter& parameter) const;

    const Member& member_;
    LCID locale_;
    std::vector<Slot> slots_;
    std::vector<VARTYPE> types_;
    std::vector<VARIANTARG*> values_;
};

}  // namespace orvo::com
