#include "platform/gdal/Library.h"

#include <cpl_conv.h>
#include <cpl_error.h>
#include <gdal.h>

#include <mutex>
#include <string_view>

namespace orvo::gdal {
namespace {

void CPL_STDCALL Note(CPLErr severity, CPLErrorNum, const char* message) {
    if (auto* complaints = static_cast<Complaints*>(CPLGetErrorHandlerUserData())) {
        complaints->Note(severity >= CE_Failure, message);
    }
}

}  // namespace

void Start() {
    static std::once_flag started;
    std::call_once(started, [] {
        CPLSetErrorHandler(CPLQuietErrorHandler);
        GDALAllRegister();
    });
}

Complaints::Complaints(Warnings* warnings) : warnings_(warnings) {
    CPLPushErrorHandlerEx(&gdal::Note, this);
}

Complaints::~Complaints() {
    CPLPopErrorHandler();
}

void Complaints::Note(bool failure, const char* message) {
    const std::string_view text(message);
    const bool endedEarly = text.find("remature end") != std::string_view::npos;
    if ((failure || endedEarly) && first_.empty()) first_ = text;
    if (failure || endedEarly || warnings_ == nullptr) return;
    // Names and values tell warnings of one sort apart.
    warnings_->try_emplace(std::string(text.substr(0, text.find_first_of("'\":0123456789"))), text);
}

Option::Option(const char* name, const char* value) : name_(name) {
    CPLSetThreadLocalConfigOption(name, value);
}

Option::~Option() {
    CPLSetThreadLocalConfigOption(name_, nullptr);
}

}  // namespace orvo::gdal
