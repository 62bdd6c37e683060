// The arguments of one call by name, converted to what the function declares.
#pragma once

#include <vector>

#include "com/orvo_tile/DualInterface.h"
#include "com/orvo_tile/Interfaces.h"

namespace orvo::com {

class CoercedArguments {
  public:
    CoercedArguments(const InterfaceFunction& function, LCID locale);
    ~CoercedArguments();
    CoercedArguments(const CoercedArguments&) = delete;
    CoercedArguments& operator=(const CoercedArguments&) = delete;

    /// Finds and converts the client's arguments, by place or by name.
    /// @param wrongArgument where the offending one stands in the client's list; may be null
    HRESULT Coerce(const DISPPARAMS& arguments, UINT* wrongArgument);

    UINT Count() const { return static_cast<UINT>(slots_.size()); }
    VARTYPE* Types() { return types_.data(); }
    VARIANTARG** Values() { return values_.data(); }

    /// Stores what the function changed in the client's variables, and moves its result into `result`, which
    /// may be null. A variable that cannot take its value does not keep the others from theirs; the first
    /// such failure is the call's.
    HRESULT WriteBack(VARIANT* result);

  private:
    struct Slot {
        VARIANT value{};            ///< of the declared type
        VARIANT before{};           ///< a copy, for those by reference
        VARIANT passed{};           ///< what the function is called with
        VARIANT* source = nullptr;  ///< the client's argument; null where it was left out
    };

    HRESULT Convert(std::size_t index);
    HRESULT ConvertObject(const VARIANT& given, VARIANT& value) const;
    HRESULT StoreChange(Slot& slot, const Parameter& parameter) const;

    const InterfaceFunction& function_;
    LCID locale_;
    std::vector<Slot> slots_;
    std::vector<VARTYPE> types_;
    std::vector<VARIANTARG*> values_;
};

}  // namespace orvo::com
