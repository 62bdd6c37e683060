// Which numbered failure an exception is.
#pragma once

#include <new>

#include "platform/RuntimeError.h"

namespace orvo {

/// The exception being handled, as the runtime would number it: for use in a catch block.
inline RuntimeError FailureInFlight() {
    try {
        throw;
    } catch (const RuntimeError& failure) {
        return failure;
    } catch (const std::bad_alloc&) {
        return RuntimeError(Fault::OutOfMemory);
    } catch (const std::exception& failure) {
        return {static_cast<Long>(Fault::AutomationError), failure.what()};
    } catch (...) {
        return RuntimeError(Fault::AutomationError);
    }
}

}  // namespace orvo
