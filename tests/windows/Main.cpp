#include <gtest/gtest.h>
#include <objbase.h>

#include "tests/windows/Orders.h"

int main(int count, char** arguments) {
    if (const auto code = orvo::FollowOrder(count, arguments)) return *code;
    testing::InitGoogleTest(&count, arguments);
    ::CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
    return RUN_ALL_TESTS();
}
