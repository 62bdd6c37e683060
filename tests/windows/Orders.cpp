#include "tests/windows/Orders.h"

#include <array>
#include <filesystem>
#include <iostream>

#include "platform/windows/system/Win32.h"
#include "support/SystemPath.h"

namespace orvo {

std::string Self() {
    std::array<wchar_t, 1024> path{};
    ::GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size()));
    return PathText(std::filesystem::path(path.data()));
}

std::optional<int> FollowOrder(int count, char** arguments) {
    const std::string order = count > 1 ? arguments[1] : "";
    if (order == "--wait") ::Sleep(30'000);
    if (order.starts_with("./")) {  // SOURCE TARGET QUALITY
        std::error_code refused;
        std::filesystem::copy_file(arguments[1], arguments[2], refused);
        return refused || count != 4 ? 1 : 0;
    }
    if (order != "--echo" && order != "--wait") return {};
    for (int i = 2; i < count; ++i) std::cout << '[' << arguments[i] << "]\n";
    return 3;
}

}  // namespace orvo
