#include "platform/gdal/OrderedRows.h"

#include <gdal_priv.h>

#include <algorithm>
#include <array>
#include <string_view>
#include <vector>

#include "platform/RuntimeError.h"
#include "platform/gdal/ErrorCapture.h"

namespace orvo::gdal {
namespace {

bool IsTextGrid(GDALDataset& dataset) {
    constexpr std::array<std::string_view, 3> kDrivers = {"AAIGrid", "GRASSASCIIGrid", "ISG"};
    const GDALDriver* const driver = dataset.GetDriver();
    return driver != nullptr && std::ranges::find(kDrivers, driver->GetDescription()) != kDrivers.end();
}

}  // namespace

void OrderedRows::Reach(GDALDataset& dataset, const std::string& file, int row) {
    if (!IsTextGrid(dataset)) return;
    const auto known = missing_.find(file);
    const auto refuse = [&](const Missing& missing) {
        if (missing.row < row) throw RuntimeError(Fault::DeviceIOError, missing.reason);
    };
    if (known != missing_.end()) refuse(known->second);
    GDALRasterBand& band = *dataset.GetRasterBand(1);
    std::vector<double> cells(static_cast<std::size_t>(band.GetXSize()));  // wide enough for every type
    const ErrorCapture errors;
    for (; reached_ < row; ++reached_) {
        if (band.ReadBlock(0, reached_, cells.data()) == CE_None && !errors.Failed()) continue;
        const auto& [path, missing] =
            *missing_.insert_or_assign(file, Missing{reached_, errors.Reason("a row is missing")}).first;
        Restart();
        refuse(missing);
    }
}

}  // namespace orvo::gdal
