#include "platform/gdal/ErrorCapture.h"

#include <cpl_error.h>

#include <string_view>

namespace orvo::gdal {
namespace {

void CPL_STDCALL Note(CPLErr severity, CPLErrorNum, const char* message) {
    if (auto* errors = static_cast<ErrorCapture*>(CPLGetErrorHandlerUserData())) {
        errors->Note(severity >= CE_Failure, message);
    }
}

}  // namespace

ErrorCapture::ErrorCapture(Warnings* warnings) : warnings_(warnings) {
    CPLPushErrorHandlerEx(&gdal::Note, this);
}

ErrorCapture::~ErrorCapture() {
    CPLPopErrorHandler();
}

void ErrorCapture::Note(bool failure, const char* message) {
    const std::string_view text(message);
    const bool endedEarly = text.find("remature end") != std::string_view::npos;
    if ((failure || endedEarly) && first_.empty()) first_ = text;
    if (failure || endedEarly || warnings_ == nullptr) return;
    // Names and values tell warnings of one sort apart.
    warnings_->try_emplace(std::string(text.substr(0, text.find_first_of("'\":0123456789"))), text);
}

}  // namespace orvo::gdal
