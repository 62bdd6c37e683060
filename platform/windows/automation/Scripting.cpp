#include "platform/windows/automation/Scripting.h"

#include "platform/windows/automation/HostObjects.h"

namespace orvo::windows {
namespace {

Automation Existing(const wchar_t* progId) {
    Automation object = CreateByName(progId);
    if (object.Dispatch() == nullptr)
        throw RuntimeError(Fault::CannotCreateObject, "the scripting runtime is not registered");
    return object;
}

}  // namespace

std::shared_ptr<IDictionary> NewDictionary() {
    return DictionaryOf(Existing(L"Scripting.Dictionary").Dispatch());
}

FileSystemObject::FileSystemObject() : object_(Existing(L"Scripting.FileSystemObject")) {}

bool FileSystemObject::FileExists(const std::string& path) {
    return object_.Call(L"FileExists", {path}).AsBool();
}

bool FileSystemObject::FolderExists(const std::string& path) {
    return object_.Call(L"FolderExists", {path}).AsBool();
}

std::string FileSystemObject::GetFileName(const std::string& path) {
    return object_.Call(L"GetFileName", {path}).AsText();
}

std::string FileSystemObject::GetBaseName(const std::string& path) {
    return object_.Call(L"GetBaseName", {path}).AsText();
}

std::string FileSystemObject::GetExtensionName(const std::string& path) {
    return object_.Call(L"GetExtensionName", {path}).AsText();
}

std::string FileSystemObject::GetParentFolderName(const std::string& path) {
    return object_.Call(L"GetParentFolderName", {path}).AsText();
}

std::string FileSystemObject::GetAbsolutePathName(const std::string& path) {
    return object_.Call(L"GetAbsolutePathName", {path}).AsText();
}

void FileSystemObject::DeleteFile(const std::string& path, bool force) {
    object_.Call(L"DeleteFile", {path, force});
}

}  // namespace orvo::windows
