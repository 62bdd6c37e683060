#include "platform/fake/Objects.h"

namespace orvo::fake {
namespace {

constexpr const char* kSeparators = "\\/";

/// A path without the separators at its end; a root keeps its own.
std::string_view WithoutTrailing(std::string_view path) {
    while (path.size() > 1 && (path.back() == '\\' || path.back() == '/') && path[path.size() - 2] != ':') {
        path.remove_suffix(1);
    }
    return path;
}

/// "\\", "/" or "C:\\": a path without components.
bool IsRoot(std::string_view path) {
    const bool endsOpen = path.ends_with('\\') || path.ends_with('/');
    return endsOpen && (path.size() == 1 || (path.size() == 3 && path[1] == ':'));
}

std::string_view LastComponent(std::string_view path) {
    path = WithoutTrailing(path);
    if (IsRoot(path)) return {};
    const auto at = path.find_last_of(kSeparators);
    return at == std::string_view::npos ? path : path.substr(at + 1);
}

bool IsAbsolute(std::string_view path) {
    return path.starts_with('\\') || path.starts_with('/') || (path.size() > 1 && path[1] == ':');
}

}  // namespace

bool FileSystemObject::FileExists(const std::string& path) {
    world_->Call("FileSystemObject.FileExists");
    return world_->HasFile(path);
}

bool FileSystemObject::FolderExists(const std::string& path) {
    world_->Call("FileSystemObject.FolderExists");
    return world_->folders.contains(World::Normal(std::string(WithoutTrailing(path))));
}

std::string FileSystemObject::GetFileName(const std::string& path) {
    world_->Call("FileSystemObject.GetFileName");
    return std::string(LastComponent(path));
}

std::string FileSystemObject::GetBaseName(const std::string& path) {
    world_->Call("FileSystemObject.GetBaseName");
    const auto name = LastComponent(path);
    return std::string(name.substr(0, name.rfind('.')));
}

std::string FileSystemObject::GetExtensionName(const std::string& path) {
    world_->Call("FileSystemObject.GetExtensionName");
    const auto name = LastComponent(path);
    const auto dot = name.rfind('.');
    return dot == std::string_view::npos ? std::string() : std::string(name.substr(dot + 1));
}

std::string FileSystemObject::GetParentFolderName(const std::string& path) {
    world_->Call("FileSystemObject.GetParentFolderName");
    const auto trimmed = WithoutTrailing(path);
    const auto at = trimmed.find_last_of(kSeparators);
    if (at == std::string_view::npos || IsRoot(trimmed)) return {};
    const bool isRoot = at == 0 || trimmed[at - 1] == ':';
    return std::string(trimmed.substr(0, isRoot ? at + 1 : at));
}

std::string FileSystemObject::GetAbsolutePathName(const std::string& path) {
    world_->Call("FileSystemObject.GetAbsolutePathName");
    return IsAbsolute(path) ? path : world_->currentFolder + "\\" + path;
}

void FileSystemObject::DeleteFile(const std::string& path, bool force) {
    world_->Call("FileSystemObject.DeleteFile");
    const std::string name = World::Normal(path);
    if (!world_->files.contains(name)) throw RuntimeError(Fault::FileNotFound);
    if (world_->lockedFiles.contains(name) || (!force && world_->readOnlyFiles.contains(name))) {
        throw RuntimeError(Fault::PermissionDenied);
    }
    world_->files.erase(name);
}

}  // namespace orvo::fake
