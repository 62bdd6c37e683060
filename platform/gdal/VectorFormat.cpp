#include "platform/gdal/VectorFormat.h"

#include <cpl_string.h>
#include <gdal_priv.h>

#include "platform/RuntimeError.h"
#include "platform/gdal/Startup.h"

namespace orvo::gdal {
namespace {

std::string Metadata(GDALDriver& driver, const char* item) {
    const char* const value = driver.GetMetadataItem(item);
    return value == nullptr ? "" : value;
}

/// The first one; empty where the format is no file, or a folder.
std::string ExtensionOf(GDALDriver& driver) {
    const CPLStringList extensions(CSLTokenizeString(Metadata(driver, GDAL_DMD_EXTENSIONS).c_str()));
    if (extensions.empty() || EQUAL(extensions[0], "gdb")) return "";
    return extensions[0];
}

bool Writes(GDALDriver& driver) {
    return Metadata(driver, GDAL_DCAP_VECTOR) == "YES" && Metadata(driver, GDAL_DCAP_CREATE) == "YES" &&
           !ExtensionOf(driver).empty();
}

/// The extension that a name or an extension stands for; empty where it is none of the driver's.
std::string ExtensionFor(GDALDriver& driver, const std::string& text) {
    if (EQUAL(driver.GetDescription(), text.c_str())) return ExtensionOf(driver);
    const CPLStringList extensions(CSLTokenizeString(Metadata(driver, GDAL_DMD_EXTENSIONS).c_str()));
    const int found = extensions.FindString(text.c_str());
    if (found < 0) return "";
    // A table alone holds no geometries: its driver writes all files of the shapefile.
    return EQUAL(extensions[found], "dbf") ? ExtensionOf(driver) : extensions[found];
}

}  // namespace

VectorFormat FindVectorFormat(const std::string& text) {
    Start();
    GDALDriverManager& manager = *GetGDALDriverManager();
    std::string names;
    for (int i = 0; i < manager.GetDriverCount(); ++i) {
        GDALDriver& driver = *manager.GetDriver(i);
        if (!Writes(driver)) continue;
        const std::string name = driver.GetDescription();
        const std::string extension = ExtensionFor(driver, text);
        if (!extension.empty()) return {name, extension, name != "ESRI Shapefile"};
        names += (names.empty() ? "" : ", ") + name;
    }
    throw RuntimeError(static_cast<Long>(Fault::AutomationError),
                       "\"" + text + "\" is no vector format that can be written; choose one of " + names);
}

}  // namespace orvo::gdal
