#include "tiling/vector/VectorLayerSource.h"

#include "platform/RuntimeError.h"
#include "tiling/Errors.h"
#include "tiling/Paths.h"

namespace orvo::tiling {

std::shared_ptr<gdal::VectorLayer> OpenLayer(const VectorGridJob& job) {
    RefuseStream(job.input);
    RefuseBackslash("INPUT", job.input);
    try {
        return gdal::OpenVectorLayer(job.input, job.layer);
    } catch (const RuntimeError& error) {
        if (error.Number() == static_cast<Long>(Fault::InvalidProcedureCall)) throw UsageError(error.what());
        throw;
    }
}

}  // namespace orvo::tiling
