#include "platform/utility/Services.h"

#include <utility>

#include "platform/utility/RasterConvert.h"
#include "platform/utility/UtilTools.h"

namespace orvo::utility {

Services MakeServices(const Settings& settings, platform::Maker<IRasterIO> newRasterIO,
                      std::shared_ptr<IProcessRunner> runner) {
    const auto current = std::make_shared<std::weak_ptr<SharedState>>();
    const auto state = [current] {
        auto shared = current->lock();
        if (!shared) *current = shared = std::make_shared<SharedState>();
        return shared;
    };
    return {
        [state, settings] { return std::make_shared<UtilTools>(state(), settings); },
        [state, settings, newRasterIO = std::move(newRasterIO), runner = std::move(runner)] {
            return std::make_shared<RasterConvert>(state(), settings, newRasterIO(), runner);
        },
    };
}

}  // namespace orvo::utility
