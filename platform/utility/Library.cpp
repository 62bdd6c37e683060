#include "platform/utility/Library.h"

#include <utility>

#include "platform/utility/RasterConvert.h"
#include "platform/utility/UtilTools.h"

namespace orvo::utility {

Services MakeServices(const Settings& settings, platform::Maker<IRasterIO> newRasterIO,
                      std::shared_ptr<IProcessRunner> runner) {
    const auto current = std::make_shared<std::weak_ptr<Library>>();
    const auto library = [current] {
        auto shared = current->lock();
        if (!shared) *current = shared = std::make_shared<Library>();
        return shared;
    };
    return {
        [library, settings] { return std::make_shared<UtilTools>(library(), settings); },
        [library, settings, newRasterIO = std::move(newRasterIO), runner = std::move(runner)] {
            return std::make_shared<RasterConvert>(library(), settings, newRasterIO(), runner);
        },
    };
}

}  // namespace orvo::utility
