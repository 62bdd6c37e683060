#include "support/basApi.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

#include "errorreport/Procedure.h"
#include "platform/Platform.h"

namespace orvo {
namespace {

constexpr ProcedureText kGetString{
    "[basApi] Public Function GetString(ByVal hKey As Long, ByVal strPath As String, ByVal strValue As "
    "String)",
    "basApi", "GetString"};

IRegistry& Registry() {
    return Object(platform::Current().registry);
}

/// The text up to the first character of code 0; without one there is nothing to cut at.
std::string CutAtZero(const std::string& buffer) {
    const auto end = buffer.find('\0');
    if (end == std::string::npos) throw RuntimeError(Fault::InvalidProcedureCall);
    return buffer.substr(0, end);
}

std::string ReadRegistryValue(Long hKey, const std::string& name) {
    Long size = 0;
    Long type = 0;
    if (Registry().RegQueryValueEx(hKey, name, type, nullptr, size) != 0) return {};
    if (type != IRegistry::kTypeString && type != IRegistry::kTypeBinary) return {};
    std::string buffer(static_cast<std::size_t>(std::max<Long>(size, 0)), '\0');
    Long typeAgain = 0;
    if (Registry().RegQueryValueEx(hKey, name, typeAgain, buffer.data(), size) != 0) return {};
    if (type == IRegistry::kTypeString) return CutAtZero(buffer);
    std::int16_t v = 0;
    std::memcpy(&v, buffer.data(), std::min(buffer.size(), sizeof v));
    return std::to_string(v);
}

}  // namespace

Variant GetString(Long hKey, const std::string& strPath, const std::string& strValue) {
    return Procedure<Variant>(kGetString).Run([&](Statements& run, Variant& result) {
        Long handle = 0;
        run([&] { Registry().RegOpenKey(hKey, strPath, handle); });
        run([&] { result = ReadRegistryValue(handle, strValue); });
        run([&] { Registry().RegCloseKey(handle); });
    });
}

}  // namespace orvo
