// The utility library's language and free names.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "platform/utility/SharedState.h"

namespace orvo::utility {

/// Names that it gave out stay reserved until a file stands under them, at most as long as it lives.
class UtilTools final : public IUtilTools {
  public:
    UtilTools(std::shared_ptr<SharedState> state, const Settings& settings)
        : state_(std::move(state)), languageOffset_(settings.languageOffset) {}
    ~UtilTools() override { state_->reservations.ReleaseAll(this); }
    UtilTools(const UtilTools&) = delete;
    UtilTools& operator=(const UtilTools&) = delete;

    Integer GetLanguageOffset() override { return languageOffset_; }
    /// Errors as in Reservations::Reserve.
    std::string GetFreeFileName(const std::string& folder, const std::string& baseName,
                                const std::vector<std::string>& extensions) override {
        return state_->reservations.Reserve(this, folder, baseName, extensions);
    }

  private:
    std::shared_ptr<SharedState> state_;
    Integer languageOffset_;
};

}  // namespace orvo::utility
