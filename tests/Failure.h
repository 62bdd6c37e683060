// What the tests of several folders ask about failures.
#pragma once

#include <string>

#include "platform/RuntimeError.h"

namespace orvo {

/// Number and text of a failing call, as "53 File not found"; empty where it works.
template <class Call>
std::string FailureOf(Call&& call) {
    try {
        call();
    } catch (const RuntimeError& failure) {
        return std::to_string(failure.Number()) + " " + failure.Description();
    }
    return {};
}

/// The number that a call fails with; 0 where it works.
template <class Call>
Long NumberOf(Call&& call) {
    const std::string failure = FailureOf(call);
    return failure.empty() ? 0 : static_cast<Long>(std::stol(failure));
}

}  // namespace orvo
