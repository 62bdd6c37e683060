#include "platform/gdal/Startup.h"

#include <cpl_error.h>
#include <gdal.h>

#include <mutex>

namespace orvo::gdal {

void Start() {
    static std::once_flag started;
    std::call_once(started, [] {
        CPLSetErrorHandler(CPLQuietErrorHandler);
        GDALAllRegister();
    });
}

}  // namespace orvo::gdal
