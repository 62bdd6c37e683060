#include "platform/gdal/FormatTrial.h"

#include <cpl_string.h>
#include <gdal_priv.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <random>
#include <utility>

#include "platform/RuntimeError.h"
#include "platform/gdal/ErrorCapture.h"
#include "platform/gdal/ScopedOption.h"

namespace orvo::gdal {
namespace {

std::size_t CellCount(GDALDataset& dataset) {
    return static_cast<std::size_t>(dataset.GetRasterXSize()) *
           static_cast<std::size_t>(dataset.GetRasterYSize());
}

bool Transfer(GDALRasterBand& band, GDALRWFlag direction, std::vector<double>& cells) {
    return band.RasterIO(direction, 0, 0, band.GetXSize(), band.GetYSize(), cells.data(), band.GetXSize(),
                         band.GetYSize(), GDT_Float64, 0, 0, nullptr) == CE_None;
}

/// The highest whole number that the band's cells may hold here.
double Highest(GDALRasterBand& band) {
    if (const GDALColorTable* const table = band.GetColorTable()) return table->GetColorEntryCount() - 1;
    const char* const bits = band.GetMetadataItem("NBITS", "IMAGE_STRUCTURE");
    const int used = bits == nullptr ? GDALGetDataTypeSizeBits(band.GetRasterDataType())
                                     : static_cast<int>(std::strtol(bits, nullptr, 10));
    return std::ldexp(1.0, std::clamp(used, 1, 32)) - 1;
}

bool IsSame(double a, double b) {
    return a == b || (std::isnan(a) && std::isnan(b));
}

bool SameValues(GDALDataset& a, GDALDataset& b) {
    std::vector<double> first(CellCount(a)), second(CellCount(a));
    for (int band = 1; band <= a.GetRasterCount(); ++band) {
        if (!Transfer(*a.GetRasterBand(band), GF_Read, first) ||
            !Transfer(*b.GetRasterBand(band), GF_Read, second) || !std::ranges::equal(first, second, IsSame))
            return false;
    }
    return true;
}

bool SameForm(GDALDataset& a, GDALDataset& b) {
    if (a.GetRasterCount() != b.GetRasterCount() || a.GetRasterXSize() != b.GetRasterXSize() ||
        a.GetRasterYSize() != b.GetRasterYSize())
        return false;
    for (int band = 1; band <= a.GetRasterCount(); ++band) {
        const GDALDataType type = b.GetRasterBand(band)->GetRasterDataType();
        if (GDALDataTypeUnion(a.GetRasterBand(band)->GetRasterDataType(), type) != type) return false;
    }
    return true;
}

bool HasPlace(const std::string& file) {
    const ErrorCapture ignored;
    const NoSideFiles alone;
    const GDALDatasetUniquePtr dataset(GDALDataset::Open(file.c_str(), GDAL_OF_RASTER));
    std::array<double, 6> t{};
    return dataset && dataset->GetGeoTransform(t.data()) == CE_None;
}

/// What people call it, where the original's band has it and the other has not the same.
std::vector<std::string> LostBy(GDALRasterBand& from, GDALRasterBand& to) {
    std::vector<std::string> lost;
    int has = FALSE, hasToo = FALSE;
    const double nodata = from.GetNoDataValue(&has), written = to.GetNoDataValue(&hasToo);
    if (has != FALSE && (hasToo == FALSE || !IsSame(nodata, written))) lost.emplace_back("nodata value");
    if (from.GetColorTable() != nullptr && to.GetColorTable() == nullptr) lost.emplace_back("colour table");
    const auto scaled = [](GDALRasterBand& band) { return std::pair{band.GetScale(), band.GetOffset()}; };
    if (scaled(from) != scaled(to)) lost.emplace_back("scale and offset");
    const std::string name = from.GetDescription();
    if (!name.empty() && name != to.GetDescription()) lost.emplace_back("band descriptions");
    return lost;
}

}  // namespace

FolderOfFiles::FolderOfFiles(std::string path) : path_(std::move(path)) {
    VSIRmdirRecursive(path_.c_str());
    if (VSIMkdirRecursive(path_.c_str(), 0777) != 0)
        throw RuntimeError(Fault::PathFileAccess, "the folder " + path_ + " cannot be made");
}

FolderOfFiles::~FolderOfFiles() {
    const ErrorCapture ignored;
    VSIRmdirRecursive(path_.c_str());
}

std::vector<std::string> FolderOfFiles::Names() const {
    const CPLStringList list(VSIReadDir(path_.c_str()));
    std::vector<std::string> names;
    for (int i = 0; i < list.size(); ++i) {
        const std::string name = list[i];
        if (name == "." || name == "..") continue;
        VSIStatBufL status;
        if (VSIStatL((path_ + "/" + name).c_str(), &status) != 0 || VSI_ISDIR(status.st_mode))
            throw RuntimeError(static_cast<Long>(Fault::AutomationError),
                               "the format keeps the folder \"" + name + "\" beside its file");
        names.push_back(name);
    }
    std::ranges::sort(names);
    return names;
}

void FillHard(GDALDataset& sample) {
    constexpr unsigned kSeed = 1;    // the same sample for every run
    std::minstd_rand random(kSeed);  // NOLINT(cert-msc32-c,cert-msc51-cpp): nothing secret
    std::vector<double> cells(CellCount(sample));
    for (int number = 1; number <= sample.GetRasterCount(); ++number) {
        GDALRasterBand& band = *sample.GetRasterBand(number);
        const GDALDataType type = band.GetRasterDataType();
        const double highest = Highest(band);
        for (double& cell : cells) {
            const double part = static_cast<double>(random() - 1) / std::minstd_rand::max();
            if (GDALDataTypeIsInteger(type) == 0) {
                cell = (part - 0.5) * std::pow(10, static_cast<int>(random() % 6));
            } else {
                cell = std::floor(part * (highest + 1));
                if (GDALDataTypeIsSigned(type) != 0) cell -= (highest + 1) / 2;
            }
        }
        Transfer(band, GF_Write, cells);
    }
}

Likeness Compare(GDALDataset& original, const std::string& file) {
    const ErrorCapture errors;
    const GDALDatasetUniquePtr written(GDALDataset::Open(file.c_str(), GDAL_OF_RASTER));
    if (!written || written->GetRasterCount() == 0) return {};
    Likeness found;
    found.sameForm = SameForm(original, *written);
    if (!found.sameForm) return found;
    found.sameValues = SameValues(original, *written) && !errors.Failed();
    found.ownPlace = HasPlace(file);
    std::vector<std::string> lost;
    for (int band = 1; band <= original.GetRasterCount(); ++band) {
        for (std::string& what : LostBy(*original.GetRasterBand(band), *written->GetRasterBand(band))) {
            if (std::ranges::find(lost, what) == lost.end()) lost.push_back(std::move(what));
        }
    }
    const bool placed = original.GetSpatialRef() != nullptr && found.ownPlace;
    if (placed && written->GetSpatialRef() == nullptr) lost.emplace_back("coordinate system");
    for (const std::string& what : lost) found.lost += (found.lost.empty() ? "" : ", ") + what;
    return found;
}

}  // namespace orvo::gdal
