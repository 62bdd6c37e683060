#include "com/orvo_platform/Registration.h"

#include <string>
#include <vector>

#include "com/orvo_platform/Classes.h"
#include "platform/windows/system/WideText.h"

namespace orvo::windows {
namespace {

constexpr const wchar_t* kScopeVariable = L"ORVO_TILE_SCOPE";
constexpr const wchar_t* kClasses = L"Software\\Classes\\";

std::wstring TextOf(REFGUID id) {
    wchar_t text[40] = L"";
    ::StringFromGUID2(id, text, sizeof text / sizeof *text);
    return text;
}

std::wstring ModulePath() {
    HMODULE module = nullptr;
    ::GetModuleHandleExW(
        GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
        reinterpret_cast<const wchar_t*>(&Register), &module);
    std::wstring path(32768, L'\0');
    path.resize(::GetModuleFileNameW(module, path.data(), static_cast<DWORD>(path.size())));
    return path;
}

LSTATUS Write(HKEY root, const std::wstring& key, const wchar_t* name, const std::wstring& text) {
    return ::RegSetKeyValueW(root, (kClasses + key).c_str(), name, REG_SZ, text.c_str(),
                             static_cast<DWORD>((text.size() + 1) * sizeof(wchar_t)));
}

LSTATUS WriteClass(HKEY root, const CreatableClass& made, const std::wstring& path) {
    const std::wstring id = TextOf(made.id);
    const std::wstring key = L"CLSID\\" + id;
    LSTATUS status = Write(root, key, nullptr, made.description);
    const auto add = [&](const std::wstring& below, const wchar_t* name, const std::wstring& text) {
        if (status == ERROR_SUCCESS) status = Write(root, below, name, text);
    };
    add(key + L"\\InprocServer32", nullptr, path);
    add(key + L"\\InprocServer32", L"ThreadingModel", L"Apartment");
    add(key + L"\\ProgID", nullptr, made.progId);
    add(key + L"\\Programmable", nullptr, L"");
    add(made.progId, nullptr, made.description);
    add(std::wstring(made.progId) + L"\\CLSID", nullptr, id);
    return status;
}

/// Opens a key below Software\Classes for reading; null where there is none.
/// @param view 0 for that of this DLL's bitness
HKEY Opened(HKEY root, const std::wstring& key, REGSAM view) {
    HKEY opened = nullptr;
    ::RegOpenKeyExW(root, (kClasses + key).c_str(), 0, KEY_READ | view, &opened);
    return opened;
}

/// Whether the DLL of the other bitness is registered too: classes have a view of the registry for each,
/// ProgIDs are shared. On a system of one bitness there is one view.
bool HasOtherView(HKEY root, const std::wstring& key) {
    HKEY opened = Opened(root, key, sizeof(void*) == 8 ? KEY_WOW64_32KEY : KEY_WOW64_64KEY);
    if (opened != nullptr) ::RegCloseKey(opened);
    return opened != nullptr;
}

/// The key of all classes, which registration may have made.
void RemoveEmptyParent(HKEY root) {
    HKEY opened = Opened(root, L"CLSID", 0);
    if (opened == nullptr) return;
    DWORD values = 1;
    ::RegQueryInfoKeyW(opened, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, &values, nullptr,
                       nullptr, nullptr, nullptr);
    ::RegCloseKey(opened);
    if (values == 0) ::RegDeleteKeyW(root, L"Software\\Classes\\CLSID");  // fails where keys are below it
}

LSTATUS RemoveFrom(HKEY root) {
    LSTATUS first = ERROR_SUCCESS;
    const auto remove = [&](const std::wstring& key) {
        const LSTATUS status = ::RegDeleteTreeW(root, (kClasses + key).c_str());
        if (status != ERROR_FILE_NOT_FOUND && first == ERROR_SUCCESS) first = status;
    };
    for (const CreatableClass& made : CreatableClasses()) {
        const std::wstring key = L"CLSID\\" + TextOf(made.id);
        remove(key);
        if (!HasOtherView(root, key)) remove(made.progId);
    }
    RemoveEmptyParent(root);
    return first;
}

/// All entries, or none.
LSTATUS WriteTo(HKEY root) {
    const std::wstring path = ModulePath();
    LSTATUS status = ERROR_SUCCESS;
    for (const CreatableClass& made : CreatableClasses())
        if (status == ERROR_SUCCESS) status = WriteClass(root, made, path);
    if (status != ERROR_SUCCESS) RemoveFrom(root);
    return status;
}

}  // namespace

HRESULT Register() {
    const std::wstring scope = Environment(kScopeVariable);
    LSTATUS status = ERROR_ACCESS_DENIED;
    if (scope != L"user") status = WriteTo(HKEY_LOCAL_MACHINE);
    if (status == ERROR_ACCESS_DENIED && scope != L"machine") status = WriteTo(HKEY_CURRENT_USER);
    return HRESULT_FROM_WIN32(static_cast<DWORD>(status));
}

HRESULT Unregister() {
    const std::wstring scope = Environment(kScopeVariable);
    LSTATUS status = scope == L"machine" ? ERROR_SUCCESS : RemoveFrom(HKEY_CURRENT_USER);
    if (scope != L"user") {
        const LSTATUS machine = RemoveFrom(HKEY_LOCAL_MACHINE);
        if (status == ERROR_SUCCESS) status = machine;
    }
    return HRESULT_FROM_WIN32(static_cast<DWORD>(status));
}

}  // namespace orvo::windows
