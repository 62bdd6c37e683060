#include "platform/gdal/BandFacts.h"

#include <cpl_string.h>
#include <gdal_priv.h>

namespace orvo::gdal {
namespace {

/// All items but those that were counted over the whole layer.
template <class Object>
void CopyItems(Object& from, Object& to, const char* domain) {
    const CPLStringList items(CSLDuplicate(from.GetMetadata(domain)));
    for (int i = 0; i < items.size(); ++i) {
        char* name = nullptr;
        const char* const value = CPLParseNameValue(items[i], &name);
        if (name != nullptr && !STARTS_WITH_CI(name, "STATISTICS_")) to.SetMetadataItem(name, value, domain);
        CPLFree(name);
    }
}

}  // namespace

void CopyFacts(GDALRasterBand& from, GDALRasterBand& to) {
    int has = FALSE;
    const double nodata = from.GetNoDataValue(&has);
    if (has != FALSE) to.SetNoDataValue(nodata);
    if (from.GetColorTable() != nullptr) to.SetColorTable(from.GetColorTable());
    to.SetColorInterpretation(from.GetColorInterpretation());
    to.SetDescription(from.GetDescription());
    to.SetUnitType(from.GetUnitType());
    if (const double offset = from.GetOffset(&has); has != FALSE) to.SetOffset(offset);
    if (const double scale = from.GetScale(&has); has != FALSE) to.SetScale(scale);
    if (from.GetCategoryNames() != nullptr) to.SetCategoryNames(from.GetCategoryNames());
    if (from.GetDefaultRAT() != nullptr) to.SetDefaultRAT(from.GetDefaultRAT());
    CopyItems(from, to, "");
    CopyItems(from, to, "IMAGE_STRUCTURE");  // how many bits of a cell count, and their sign
}

void CopyMetadata(GDALDataset& from, GDALDataset& to) {
    CopyItems(from, to, "");
}

}  // namespace orvo::gdal
