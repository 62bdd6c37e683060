#include "platform/gdal/DecoderThreads.h"

#include <cpl_conv.h>
#include <cpl_string.h>
#include <gdal_priv.h>

#include <algorithm>
#include <array>
#include <string>

#include "platform/gdal/ErrorCapture.h"

namespace orvo::gdal {

bool DecodesOnThreads(GDALDataset& dataset) {
    constexpr std::array kExtensions = {"jp2", "j2k", "jpx", "jpc", "jxl"};
    const ErrorCapture ignored;
    const CPLStringList files(dataset.GetFileList());
    for (int i = 0; i < files.size(); ++i) {
        const std::string extension = CPLGetExtension(files[i]);
        if (std::ranges::any_of(kExtensions, [&](const char* one) { return EQUAL(one, extension.c_str()); }))
            return true;
    }
    return false;
}

void SetDecoderThreads(int threads) {
    CPLSetConfigOption("GDAL_NUM_THREADS", std::to_string(threads).c_str());
}

}  // namespace orvo::gdal
