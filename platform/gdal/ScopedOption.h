// Options of the raster library for a while.
#pragma once

#include <cpl_conv.h>

namespace orvo::gdal {

/// Sets an option of the library on this thread as long as it lives.
class ScopedOption {
  public:
    /// Both texts must outlive this object.
    ScopedOption(const char* name, const char* value) : name_(name) {
        CPLSetThreadLocalConfigOption(name, value);
    }
    ~ScopedOption() { CPLSetThreadLocalConfigOption(name_, nullptr); }
    ScopedOption(const ScopedOption&) = delete;
    ScopedOption& operator=(const ScopedOption&) = delete;

  private:
    const char* name_;
};

/// Keeps the library from writing side files.
struct NoSideFiles : ScopedOption {
    NoSideFiles() : ScopedOption("GDAL_PAM_ENABLED", "NO") {}
};

}  // namespace orvo::gdal
