#include "platform/gdal/RasterFormat.h"

#include <cpl_string.h>
#include <gdal_priv.h>

#include <algorithm>
#include <array>
#include <string_view>

#include "platform/RuntimeError.h"
#include "platform/gdal/ErrorCapture.h"
#include "platform/gdal/Startup.h"
#include "support/Text.h"

namespace orvo::gdal {
namespace {

std::string Metadata(GDALDriver& driver, const char* item) {
    const char* const value = driver.GetMetadataItem(item);
    return value == nullptr ? "" : value;
}

/// Formats without pixels of their own, and folders of files.
bool HoldsFiles(const std::string& driver) {
    constexpr std::array<std::string_view, 7> kOthers = {"MEM",    "VRT",  "Zarr",         "KMLSUPEROVERLAY",
                                                         "TileDB", "WMTS", "PostGISRaster"};
    return std::find(kOthers.begin(), kOthers.end(), driver) == kOthers.end();
}

bool Writes(GDALDriver& driver) {
    const bool creates =
        Metadata(driver, GDAL_DCAP_CREATE) == "YES" || Metadata(driver, GDAL_DCAP_CREATECOPY) == "YES";
    return creates && Metadata(driver, GDAL_DCAP_RASTER) == "YES" && HoldsFiles(driver.GetDescription());
}

std::string ExtensionOf(GDALDriver& driver) {
    const CPLStringList extensions(CSLTokenizeString(Metadata(driver, GDAL_DMD_EXTENSIONS).c_str()));
    std::string plain;
    for (const char c : LCase(extensions.empty() ? driver.GetDescription() : extensions[0])) {
        if ((c >= 'a' && c <= 'z') || (c >= '0' && c <= '9')) plain += c;
    }
    return plain == "jpeg" ? "jpg" : plain == "tiff" ? "tif" : plain;
}

bool HasExtension(GDALDriver& driver, const std::string& text) {
    const CPLStringList extensions(CSLTokenizeString(Metadata(driver, GDAL_DMD_EXTENSIONS).c_str()));
    return extensions.FindString(text.c_str()) >= 0;
}

}  // namespace

RasterFormat FindRasterFormat(const std::string& text) {
    Start();
    const std::string plain = text.starts_with('.') ? text.substr(1) : text;
    GDALDriverManager& manager = *GetGDALDriverManager();
    std::string names;
    for (int i = 0; i < manager.GetDriverCount(); ++i) {
        GDALDriver& driver = *manager.GetDriver(i);
        if (!Writes(driver)) continue;
        const std::string name = driver.GetDescription();
        if (EQUAL(name.c_str(), plain.c_str())) return {name, ExtensionOf(driver)};
        names += (names.empty() ? "" : ", ") + name;
    }
    for (int i = 0; i < manager.GetDriverCount(); ++i) {
        GDALDriver& driver = *manager.GetDriver(i);
        if (!Writes(driver) || !HasExtension(driver, plain)) continue;
        const std::string extension = LCase(plain);
        return {driver.GetDescription(), extension == "jpeg"   ? "jpg"
                                         : extension == "tiff" ? "tif"
                                                               : extension};
    }
    throw RuntimeError(static_cast<Long>(Fault::AutomationError),
                       "\"" + text + "\" is no raster format that can be written; choose one of " + names);
}

void CheckOptions(const RasterFormat& format, const std::vector<std::string>& options) {
    CPLStringList list;
    for (const std::string& option : options) list.AddString(option.c_str());
    GDALDriver* const driver = GetGDALDriverManager()->GetDriverByName(format.driver.c_str());
    Warnings warnings;
    const ErrorCapture errors(&warnings);
    const bool known = GDALValidateCreationOptions(driver, list.List()) != FALSE;
    if (known && warnings.empty() && !errors.Failed()) return;
    const std::string reason = warnings.empty() ? errors.Reason("unknown") : warnings.begin()->second;
    throw RuntimeError(static_cast<Long>(Fault::AutomationError),
                       reason + "; 'gdalinfo --format " + format.driver + "' lists the options");
}

}  // namespace orvo::gdal
