// The calling thread's GEOS context: its failures as ours, its geometries owned. For the sources of this
// room.
#pragma once

#include <geos_c.h>

#include <memory>

namespace orvo::geos {

/// The handle that every call of the library takes, one for each thread.
GEOSContextHandle_t GeosContext();

/// Owns one geometry of the library. It stays on the thread that made it.
struct DestroyGeometry {
    void operator()(GEOSGeometry* geometry) const;
};
using Handle = std::unique_ptr<GEOSGeometry, DestroyGeometry>;

// Each of these takes what a call returned, and fails with number 440 and the library's own text where the
// call failed.

Handle Owned(GEOSGeometry* geometry);
bool Answer(char answer);
void Check(int done);
[[noreturn]] void FailAsGeosDid();

}  // namespace orvo::geos
