// The fake platform's registry, clock, operating system and desktop.
#include <algorithm>

#include "platform/dialog/Answers.h"
#include "platform/fake/Objects.h"

namespace orvo::fake {
namespace {
constexpr Long kSuccess = 0;
constexpr Long kFileNotFound = 2;
constexpr Long kInvalidHandle = 6;
constexpr Long kMoreData = 234;
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

std::string OperatingSystem::TempFolder() {
    world_->Call("OperatingSystem.TempFolder");
    return world_->tempFolder;
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

void Desktop::ShowModal(IDialogEvents& events) {
    world_->Call("Desktop.ShowModal");
    const auto handle = [this](const std::function<void()>& handler) {
        dialog::Guard(handler,
                      [this](const RuntimeError& failure) { world_->eventFailures.push_back(failure); });
    };
    handle([&] { events.Form_Activate(); });
    const FailureView view = ViewOf(events.Controls());
    world_->failures.push_back(view);
    for (const Integer button : world_->reportClicks) handle([&] { events.cmdProtocol_Click(button); });
    const auto choice = world_->answer ? world_->answer(view) : dialog::kLeaveProcedure;
    if (choice) events.cmdContinue_Click(*choice);
}

void Desktop::Beep() {
    world_->Call("Desktop.Beep");
    ++world_->beeps;
}

orvo::Box Desktop::Screen() {
    world_->Call("Desktop.Screen");
    return world_->screen;
}

void Desktop::Print(const std::vector<std::string>& lines) {
    world_->Call("Desktop.Print");
    world_->printed.push_back(lines);
}

void Desktop::CopyToClipboard(const std::string& text) {
    world_->Call("Desktop.CopyToClipboard");
    world_->clipboard = text;
}

void Desktop::Open(const std::string& address) {
    world_->Call("Desktop.Open");
    world_->opened.push_back(address);
}

bool TextFiles::Exists(const std::string& path) {
    world_->Call("TextFiles.Exists");
    return world_->HasFile(path);
}

void TextFiles::Append(const std::string& path, const std::string& text) {
    world_->Call("TextFiles.Append");
    Writable(path) += text;
}

void TextFiles::Replace(const std::string& path, const std::string& text) {
    world_->Call("TextFiles.Replace");
    Writable(path) = text;
}

/// A file's content; fails where its folder is missing or the file is locked.
std::string& TextFiles::Writable(const std::string& path) {
    const std::string name = World::Normal(path);
    if (!world_->folders.contains(name.substr(0, name.find_last_of('\\'))))
        throw RuntimeError(Fault::PathNotFound, path);
    if (world_->lockedFiles.contains(name)) throw RuntimeError(Fault::PermissionDenied, path);
    return world_->files[name];
}

}  // namespace orvo::fake
