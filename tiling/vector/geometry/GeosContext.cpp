#include "tiling/vector/geometry/GeosContext.h"

#include <string>
#include <utility>

#include "platform/RuntimeError.h"
#include "tiling/vector/geometry/WorkLimit.h"

namespace orvo::geos {
namespace {

class Context {
  public:
    Context() : handle_(GEOS_init_r()) { GEOSContext_setErrorMessageHandler_r(handle_, &Keep, &complaint_); }
    ~Context() { GEOS_finish_r(handle_); }
    Context(const Context&) = delete;
    Context& operator=(const Context&) = delete;

    static Context& Current() {
        thread_local Context context;
        return context;
    }

    GEOSContextHandle_t Get() const { return handle_; }
    std::string TakeComplaint() { return std::exchange(complaint_, {}); }

  private:
    static void Keep(const char* text, void* complaint) { *static_cast<std::string*>(complaint) = text; }

    GEOSContextHandle_t handle_;
    std::string complaint_;  ///< the last one
};

}  // namespace

GEOSContextHandle_t GeosContext() {
    return Context::Current().Get();
}

void DestroyGeometry::operator()(GEOSGeometry* geometry) const {
    GEOSGeom_destroy_r(GeosContext(), geometry);
}

Handle Owned(GEOSGeometry* geometry) {
    if (geometry == nullptr) FailAsGeosDid();
    return Handle(geometry);
}

bool Answer(char answer) {
    if (answer != 0 && answer != 1) FailAsGeosDid();
    return answer == 1;
}

void Check(int done) {
    if (done == 0) FailAsGeosDid();
}

void FailAsGeosDid() {
    WorkLimit::Require();
    const std::string text = Context::Current().TakeComplaint();
    throw RuntimeError(Fault::AutomationError,
                       "the geometry library failed: " + (text.empty() ? "no reason given" : text));
}

}  // namespace orvo::geos
