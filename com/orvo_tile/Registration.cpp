#include "com/orvo_tile/Registration.h"

#include <string>
#include <vector>

#include "com/orvo_tile/Call.h"
#include "com/orvo_tile/ClassFactory.h"
#include "com/orvo_tile/Module.h"
#include "platform/windows/system/WideText.h"

namespace orvo::com {
namespace {

constexpr const wchar_t* kClasses = L"Software\\Classes\\";
constexpr const wchar_t* kLibraryVersion = L"1.0";
constexpr const wchar_t* kLibraryName = L"Orvo_Tile: raster and vector tiles";
constexpr const wchar_t* kAutomationProxy = L"{00020424-0000-0000-C000-000000000046}";
constexpr const wchar_t* kPlatformName = sizeof(void*) == 8 ? L"win64" : L"win32";

struct Value {
    std::wstring key;   ///< below Software\Classes
    std::wstring name;  ///< empty for the key's own value
    std::wstring text;
};

std::wstring TextOf(REFGUID id) {
    std::wstring text(39, L'\0');
    StringFromGUID2(id, text.data(), static_cast<int>(text.size()));
    text.resize(38);
    return text;
}

std::wstring LibraryKey() {
    return L"TypeLib\\" + TextOf(LIBID_Orvo_Tile);
}

struct NamedInterface {
    IID id;
    const wchar_t* name;
};

std::vector<NamedInterface> Interfaces() {
    return {{__uuidof(::IStatusDisplay), L"IStatusDisplay"},
            {__uuidof(_clsTileImage), L"_clsTileImage"},
            {__uuidof(_clsTileVector), L"_clsTileVector"}};
}

void AddClass(std::vector<Value>& values, const CreatableClass& made, const std::wstring& path) {
    const std::wstring key = L"CLSID\\" + TextOf(made.id);
    values.push_back({key, L"", made.description});
    values.push_back({key + L"\\InprocServer32", L"", path});
    values.push_back({key + L"\\InprocServer32", L"ThreadingModel", L"Apartment"});
    values.push_back({key + L"\\ProgID", L"", made.progId});
    values.push_back({key + L"\\Programmable", L"", L""});
    values.push_back({key + L"\\TypeLib", L"", TextOf(LIBID_Orvo_Tile)});
    values.push_back({key + L"\\Version", L"", kLibraryVersion});
    values.push_back({made.progId, L"", made.description});
    values.push_back({std::wstring(made.progId) + L"\\CLSID", L"", TextOf(made.id)});
}

std::vector<Value> AllValues() {
    const std::wstring path = ModulePath();
    const std::wstring version = LibraryKey() + L"\\" + kLibraryVersion;
    std::vector<Value> values{{version, L"", kLibraryName},
                              {version + L"\\0\\" + kPlatformName, L"", path},
                              {version + L"\\FLAGS", L"", L"0"},
                              {version + L"\\HELPDIR", L"", path.substr(0, path.find_last_of(L'\\'))}};
    for (const CreatableClass& made : CreatableClasses()) AddClass(values, made, path);
    for (const NamedInterface& each : Interfaces()) {
        const std::wstring key = L"Interface\\" + TextOf(each.id);
        values.push_back({key, L"", each.name});
        values.push_back({key + L"\\ProxyStubClsid32", L"", kAutomationProxy});
        values.push_back({key + L"\\TypeLib", L"", TextOf(LIBID_Orvo_Tile)});
        values.push_back({key + L"\\TypeLib", L"Version", kLibraryVersion});
    }
    return values;
}

LSTATUS Write(HKEY root, const Value& value) {
    HKEY key = nullptr;
    const std::wstring path = kClasses + value.key;
    LSTATUS status = RegCreateKeyExW(root, path.c_str(), 0, nullptr, 0, KEY_WRITE, nullptr, &key, nullptr);
    if (status != ERROR_SUCCESS) return status;
    const auto size = static_cast<DWORD>((value.text.size() + 1) * sizeof(wchar_t));
    status = RegSetValueExW(key, value.name.empty() ? nullptr : value.name.c_str(), 0, REG_SZ,
                            reinterpret_cast<const BYTE*>(value.text.c_str()), size);
    RegCloseKey(key);
    return status;
}

/// Deletes a key with all below it; a missing one is as good.
LSTATUS Delete(HKEY root, const std::wstring& key) {
    const std::wstring path = kClasses + key;
    const LSTATUS status = RegDeleteTreeW(root, path.c_str());
    return status == ERROR_FILE_NOT_FOUND ? ERROR_SUCCESS : status;
}

/// Deletes a key that has no keys below it; true where it is gone.
bool DeleteLeaf(HKEY root, const std::wstring& key) {
    const LSTATUS status = RegDeleteKeyW(root, (kClasses + key).c_str());
    return status == ERROR_SUCCESS || status == ERROR_FILE_NOT_FOUND;
}

bool HasValues(HKEY root, const std::wstring& key) {
    const std::wstring path = kClasses + key;
    HKEY opened = nullptr;
    if (RegOpenKeyExW(root, path.c_str(), 0, KEY_READ, &opened) != ERROR_SUCCESS) return true;
    DWORD count = 1;
    RegQueryInfoKeyW(opened, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, &count, nullptr, nullptr,
                     nullptr, nullptr);
    RegCloseKey(opened);
    return count != 0;
}

/// Whether the DLL of the other bitness is registered too: classes and interfaces have a view of the registry
/// for each, ProgIDs and type libraries are shared. On a system of one bitness there is one view.
bool HasOtherView(HKEY root, const std::wstring& key) {
    constexpr REGSAM other = sizeof(void*) == 8 ? KEY_WOW64_32KEY : KEY_WOW64_64KEY;
    HKEY opened = nullptr;
    if (RegOpenKeyExW(root, (kClasses + key).c_str(), 0, KEY_READ | other, &opened) != ERROR_SUCCESS)
        return false;
    RegCloseKey(opened);
    return true;
}

LSTATUS RemoveFrom(HKEY root) {
    LSTATUS first = ERROR_SUCCESS;
    const auto remove = [&](const std::wstring& key) {
        const LSTATUS status = Delete(root, key);
        if (first == ERROR_SUCCESS) first = status;
    };
    for (const CreatableClass& made : CreatableClasses()) {
        const std::wstring key = L"CLSID\\" + TextOf(made.id);
        remove(key);
        if (!HasOtherView(root, key)) remove(made.progId);
    }
    for (const NamedInterface& each : Interfaces()) remove(L"Interface\\" + TextOf(each.id));
    // The 32-bit and the 64-bit DLL share the library's key: the last one takes it along.
    const std::wstring files = LibraryKey() + L"\\" + kLibraryVersion + L"\\0";
    remove(files + L"\\" + kPlatformName);
    if (DeleteLeaf(root, files)) remove(LibraryKey());
    // Keys of the system that registration may have made.
    for (const wchar_t* parent : {L"CLSID", L"TypeLib", L"Interface"})
        if (!HasValues(root, parent)) DeleteLeaf(root, parent);
    return first;
}

LSTATUS WriteTo(HKEY root) {
    for (const Value& value : AllValues()) {
        const LSTATUS status = Write(root, value);
        if (status == ERROR_SUCCESS) continue;
        RemoveFrom(root);
        return status;
    }
    return ERROR_SUCCESS;
}

}  // namespace

HRESULT Register() {
    const std::wstring scope = windows::Environment(kScopeVariable);
    LSTATUS status = ERROR_ACCESS_DENIED;
    if (scope != L"user") status = WriteTo(HKEY_LOCAL_MACHINE);
    if (status == ERROR_ACCESS_DENIED && scope != L"machine") status = WriteTo(HKEY_CURRENT_USER);
    return HRESULT_FROM_WIN32(static_cast<DWORD>(status));
}

HRESULT Unregister() {
    const std::wstring scope = windows::Environment(kScopeVariable);
    LSTATUS status = ERROR_SUCCESS;
    if (scope != L"machine") status = RemoveFrom(HKEY_CURRENT_USER);
    if (scope != L"user") {
        const LSTATUS machine = RemoveFrom(HKEY_LOCAL_MACHINE);
        if (status == ERROR_SUCCESS) status = machine;
    }
    return HRESULT_FROM_WIN32(static_cast<DWORD>(status));
}

}  // namespace orvo::com
