// The fake platform's registry, clock, operating system and desktop.
#include <algorithm>

#include "platform/fake/Objects.h"

namespace orvo::fake {
namespace {
constexpr Long kSuccess = 0;
constexpr Long kFileNotFound = 2;
constexpr Long kInvalidHandle = 6;
constexpr Long kMoreData = 234;
constexpr Integer kExitProcedure = 2;
}  // namespace

Long Registry::RegOpenKey(Long hKey, const std::string& path, Long& handle) {
    world_->Call("Registry.RegOpenKey");
    if (hKey != kCurrentUser) return kInvalidHandle;
    if (!world_->registry.contains(path)) return kFileNotFound;
    handle = ++lastHandle_;
    open_[handle] = path;
    return kSuccess;
}

Long Registry::RegQueryValueEx(Long hKey, const std::string& name, Long& type, char* data, Long& size) {
    world_->Call("Registry.RegQueryValueEx");
    const auto key = open_.find(hKey);
    if (key == open_.end()) return kInvalidHandle;
    const auto& values = world_->registry[key->second];
    const auto value = values.find(name);
    if (value == values.end()) return kFileNotFound;
    const auto& bytes = value->second.bytes;
    const Long room = size;
    type = value->second.type;
    size = static_cast<Long>(bytes.size());
    if (data == nullptr) return kSuccess;
    if (room < size) return kMoreData;
    std::ranges::copy(bytes, data);
    return kSuccess;
}

Long Registry::RegCloseKey(Long handle) {
    world_->Call("Registry.RegCloseKey");
    return open_.erase(handle) == 1 ? kSuccess : kInvalidHandle;
}

std::int64_t Clock::Seconds() {
    world_->Call("Clock.Seconds");
    const LocalTime& now = world_->now;
    return (std::int64_t{now.day} * 24 + now.hour) * 3600 + std::int64_t{now.minute} * 60 + now.second;
}

LocalTime Clock::Local(std::int64_t /*seconds*/) {
    world_->Call("Clock.Local");
    return world_->now;
}

OSVersion OperatingSystem::GetVersion() {
    world_->Call("OperatingSystem.GetVersion");
    return world_->version;
}

MessageAnswer Desktop::MessageBox(const std::string& text, const std::string& title, MessageIcon icon,
                                  MessageButtons buttons) {
    world_->Call("Desktop.MessageBox");
    world_->messages.push_back({text, title, icon, buttons});
    return world_->messageAnswer;
}

void Desktop::ShowModal(IDialogEvents& dialog) {
    world_->Call("Desktop.ShowModal");
    const FailureView view = dialog.Form_Activate();
    world_->failures.push_back(view);
    const auto choice = world_->answer ? world_->answer(view) : kExitProcedure;
    if (choice) dialog.cmdContinue_Click(*choice);
}

void Desktop::Beep() {
    world_->Call("Desktop.Beep");
    ++world_->beeps;
}

}  // namespace orvo::fake
