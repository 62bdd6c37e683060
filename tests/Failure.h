// What the tests of several folders ask about failures.
#pragma once

#include "platform/RuntimeError.h"

namespace orvo {

/// The number that a call fails with; 0 where it works.
template <class Call>
Long NumberOf(Call&& call) {
    try {
        call();
    } catch (const RuntimeError& failure) {
        return failure.Number();
    }
    return 0;
}

}  // namespace orvo
