#include "com/kit/Registration.h"

#include <string>
#include <vector>

#include "com/kit/Server.h"
#include "platform/windows/system/WideText.h"

namespace orvo::com {
namespace {

constexpr const wchar_t* kClasses = L"Software\\Classes\\";
constexpr const wchar_t* kAutomationProxy = L"{00020424-0000-0000-C000-000000000046}";
constexpr bool kWide = sizeof(void*) == 8;
constexpr const wchar_t* kPlatformName = kWide ? L"win64" : L"win32";

struct RegistryEntry {
    std::wstring key;   ///< below Software\Classes
    std::wstring name;  ///< empty for the key's own value
    std::wstring text;
};
using RegistryEntries = std::vector<RegistryEntry>;

std::wstring TextOf(REFGUID id) {
    wchar_t text[40] = L"";
    ::StringFromGUID2(id, text, sizeof text / sizeof *text);
    return text;
}

std::wstring ClassKey(const CreatableClass& made) {
    return L"CLSID\\" + TextOf(made.id);
}
std::wstring InterfaceKey(const DescribedInterface& described) {
    return L"Interface\\" + TextOf(described.id);
}
std::wstring LibraryKey(const TypeLibrary& library) {
    return L"TypeLib\\" + TextOf(library.id);
}

void AddClass(RegistryEntries& entries, const CreatableClass& made, const std::wstring& path) {
    const std::wstring key = ClassKey(made);
    entries.push_back({key, L"", made.description});
    entries.push_back({key + L"\\InprocServer32", L"", path});
    entries.push_back({key + L"\\InprocServer32", L"ThreadingModel", L"Apartment"});
    entries.push_back({key + L"\\ProgID", L"", made.progId});
    entries.push_back({key + L"\\Programmable", L"", L""});
    entries.push_back({made.progId, L"", made.description});
    entries.push_back({std::wstring(made.progId) + L"\\CLSID", L"", TextOf(made.id)});
}

void AddTypeLibrary(RegistryEntries& entries, const TypeLibrary& library, const std::wstring& path) {
    const std::wstring id = TextOf(library.id);
    const std::wstring version = LibraryKey(library) + L"\\" + library.version;
    entries.push_back({version, L"", library.description});
    entries.push_back({version + L"\\0\\" + kPlatformName, L"", path});
    entries.push_back({version + L"\\FLAGS", L"", L"0"});
    entries.push_back({version + L"\\HELPDIR", L"", path.substr(0, path.find_last_of(L'\\'))});
    for (const CreatableClass& made : ThisServer().classes) {
        entries.push_back({ClassKey(made) + L"\\TypeLib", L"", id});
        entries.push_back({ClassKey(made) + L"\\Version", L"", library.version});
    }
    for (const DescribedInterface& described : library.interfaces) {
        const std::wstring key = InterfaceKey(described);
        entries.push_back({key, L"", described.name});
        entries.push_back({key + L"\\ProxyStubClsid32", L"", kAutomationProxy});
        entries.push_back({key + L"\\TypeLib", L"", id});
        entries.push_back({key + L"\\TypeLib", L"Version", library.version});
    }
}

RegistryEntries AllEntries() {
    RegistryEntries entries;
    const std::wstring path = ServerPath();
    for (const CreatableClass& made : ThisServer().classes) AddClass(entries, made, path);
    if (ThisServer().typeLibrary) AddTypeLibrary(entries, *ThisServer().typeLibrary, path);
    return entries;
}

LSTATUS Write(HKEY root, const RegistryEntry& entry) {
    return ::RegSetKeyValueW(root, (kClasses + entry.key).c_str(),
                             entry.name.empty() ? nullptr : entry.name.c_str(), REG_SZ, entry.text.c_str(),
                             static_cast<DWORD>((entry.text.size() + 1) * sizeof(wchar_t)));
}

/// Deletes a key with all below it; a missing one is as good.
LSTATUS DeleteTree(HKEY root, const std::wstring& key) {
    const LSTATUS status = ::RegDeleteTreeW(root, (kClasses + key).c_str());
    return status == ERROR_FILE_NOT_FOUND ? ERROR_SUCCESS : status;
}

/// Deletes a key that has no keys below it; true where it is gone.
bool DeleteLeaf(HKEY root, const std::wstring& key) {
    const LSTATUS status = ::RegDeleteKeyW(root, (kClasses + key).c_str());
    return status == ERROR_SUCCESS || status == ERROR_FILE_NOT_FOUND;
}

/// Opens a key for reading; null where there is none.
/// @param view 0 for that of this DLL's bitness
HKEY Opened(HKEY root, const std::wstring& key, REGSAM view) {
    HKEY opened = nullptr;
    ::RegOpenKeyExW(root, (kClasses + key).c_str(), 0, KEY_READ | view, &opened);
    return opened;
}

bool HasValues(HKEY root, const std::wstring& key) {
    HKEY opened = Opened(root, key, 0);
    if (opened == nullptr) return true;
    DWORD count = 1;
    ::RegQueryInfoKeyW(opened, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, &count, nullptr, nullptr,
                       nullptr, nullptr);
    ::RegCloseKey(opened);
    return count != 0;
}

/// Whether the DLL of the other bitness is registered too: classes and interfaces have a view of the registry
/// for each, ProgIDs and type libraries are shared. On a system of one bitness there is one view.
bool HasOtherView(HKEY root, const std::wstring& key) {
    HKEY opened = Opened(root, key, kWide ? KEY_WOW64_32KEY : KEY_WOW64_64KEY);
    if (opened != nullptr) ::RegCloseKey(opened);
    return opened != nullptr;
}

/// Removes entries of one hive, and keeps the first failure.
class Removal {
  public:
    explicit Removal(HKEY root) : root_(root) {}
    LSTATUS Status() const { return first_; }

    void Class(const CreatableClass& made) {
        Tree(ClassKey(made));
        if (!HasOtherView(root_, ClassKey(made))) Tree(made.progId);
        Parent(L"CLSID");
    }

    /// The 32-bit and the 64-bit DLL share the library's key: the last one takes it along.
    void Library(const TypeLibrary& library) {
        for (const DescribedInterface& described : library.interfaces) Tree(InterfaceKey(described));
        const std::wstring files = LibraryKey(library) + L"\\" + library.version + L"\\0";
        Tree(files + L"\\" + kPlatformName);
        if (DeleteLeaf(root_, files)) Tree(LibraryKey(library));
        Parent(L"TypeLib");
        Parent(L"Interface");
    }

  private:
    void Tree(const std::wstring& key) {
        const LSTATUS status = DeleteTree(root_, key);
        if (first_ == ERROR_SUCCESS) first_ = status;
    }
    /// A key of the system that registration may have made.
    void Parent(const wchar_t* key) {
        if (!HasValues(root_, key)) DeleteLeaf(root_, key);
    }

    HKEY root_;
    LSTATUS first_ = ERROR_SUCCESS;
};

LSTATUS RemoveFrom(HKEY root) {
    Removal removal(root);
    for (const CreatableClass& made : ThisServer().classes) removal.Class(made);
    if (ThisServer().typeLibrary) removal.Library(*ThisServer().typeLibrary);
    return removal.Status();
}

LSTATUS WriteTo(HKEY root) {
    for (const RegistryEntry& entry : AllEntries()) {
        const LSTATUS status = Write(root, entry);
        if (status == ERROR_SUCCESS) continue;
        RemoveFrom(root);
        return status;
    }
    return ERROR_SUCCESS;
}

}  // namespace

std::wstring ServerPath() {
    HMODULE dll = nullptr;
    ::GetModuleHandleExW(
        GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
        reinterpret_cast<LPCWSTR>(&ThisServer), &dll);
    std::wstring path(32768, L'\0');
    path.resize(::GetModuleFileNameW(dll, path.data(), static_cast<DWORD>(path.size())));
    return path;
}

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
