// The test program, which its own tests start as a program that does what they order.
#include <gtest/gtest.h>
#include <objbase.h>

#include <array>
#include <filesystem>
#include <iostream>

#include "platform/windows/system/Win32.h"
#include "support/SystemPath.h"
#include "tests/windows/Self.h"

namespace orvo {

std::string Self() {
    std::array<wchar_t, 1024> path{};
    ::GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size()));
    return PathText(std::filesystem::path(path.data()));
}

}  // namespace orvo

int main(int count, char** arguments) {
    const std::string order = count > 1 ? arguments[1] : "";
    if (order.starts_with("./")) {  // SOURCE TARGET QUALITY, as a converter gets them
        std::error_code refused;
        std::filesystem::copy_file(arguments[1], arguments[2], refused);
        return refused || count != 4 ? 1 : 0;
    }
    if (order == "--echo" || order == "--wait") {
        if (order == "--wait") ::Sleep(30'000);
        for (int i = 2; i < count; ++i) std::cout << '[' << arguments[i] << "]\n";
        return 3;
    }
    testing::InitGoogleTest(&count, arguments);
    ::CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
    return RUN_ALL_TESTS();
}
