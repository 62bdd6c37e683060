#include "tiling/raster/TilesAhead.h"

#include <algorithm>
#include <memory>
#include <utility>

#include "platform/posix/ProcessRunner.h"
#include "platform/utility/RasterConvert.h"
#include "tiling/Paths.h"

namespace orvo::tiling {
namespace {

/// Pixels that wait in tiles, as if these were not compressed.
constexpr std::int64_t kMostBytes = 16 << 20;
constexpr std::int64_t kMostTiles = 64;

int TilesThatWait(const RasterJob& job, const BlockLayer& block, const TileMaker& maker) {
    const std::int64_t tile = std::int64_t{block.TileColumns()} * block.TileRows() * maker.BytesOfPixel();
    const std::int64_t most = std::clamp<std::int64_t>(kMostBytes / tile, 1, kMostTiles);
    const std::int64_t programs = 2 * std::int64_t{ThreadsOf(job.jobs)};
    return static_cast<int>(job.converter.empty() ? most : std::min(most, programs));
}

}  // namespace

TilesAhead::TilesAhead(const BlockInWork& block, const CellPlan& plan, TileMaker& maker,
                       const TileAccount& account, const RasterJob& job, const Callbacks& callbacks,
                       std::string source, std::string folder)
    : block_(block),
      plan_(plan),
      maker_(maker),
      job_(job),
      callbacks_(callbacks),
      source_(std::move(source)),
      folder_(std::move(folder)),
      names_([&] {
          std::vector<std::string> names(static_cast<std::size_t>(plan.Count()));
          for (std::int64_t cell = 0; cell < plan.Count(); ++cell) {
              const std::int64_t tile = block.tileOf(cell);
              if (account.StateOf(tile) == TileAccount::State::NotReached && plan.At(cell).inside)
                  names[static_cast<std::size_t>(cell)] = FileNameOf(account.NameOf(tile));
          }
          return names;
      }()),
      ahead_(plan.Count(), maker.ThreadsAhead(), {TilesThatWait(job, block.layer, maker)},
             [this](std::int64_t cell) {
                 Ahead<ReadyTile>::Begun begun;
                 begun.finish = Begin(cell);
                 return begun;
             }) {}

std::optional<ReadyTile> TilesAhead::Take(std::int64_t cell, const raster::TileWindow& window) {
    std::optional<ReadyTile> ready = ahead_.Take(cell, callbacks_.interrupted);
    return ready && ready->window == window ? std::move(ready) : std::nullopt;
}

std::optional<ReadyTile> TilesAhead::TakeKept(const std::string& exported) {
    return kept_.first == exported ? std::exchange(kept_.second, std::nullopt) : std::nullopt;
}

TilesAhead::Finish TilesAhead::Begin(std::int64_t cell) {
    const std::string& name = names_[static_cast<std::size_t>(cell)];
    if (name.empty()) return {};
    const CellPlan::Cell foretold = plan_.At(cell);
    const bool converts = !job_.converter.empty();
    const raster::TileWindow window =
        converts
            ? block_.layer.PixelsOf(foretold.window)
            : block_.layer.PixelsOf(foretold.extent, block_.layer.TileColumns(), block_.layer.TileRows());
    if (job_.skipBlank && maker_.IsBlank(window))
        return [window] { return ReadyTile{.window = window, .blank = true}; };
    if (converts) return BeginConversion(cell, foretold.window, window);
    return [window, files = maker_.Begin(window, name)] {
        return ReadyTile{.window = window, .files = files()};
    };
}

TilesAhead::Finish TilesAhead::BeginConversion(std::int64_t cell, const PixelWindow& part,
                                               const raster::TileWindow& window) {
    if (!job_.name.empty()) return {};
    std::shared_ptr<IRasterIO> cells = maker_.BeginConversion(window);
    return [this, cell, part, window, cells] {
        ReadyTile ready{.window = window};
        ready.path = folder_ + "/ahead" + std::to_string(cell) + "." + maker_.WrittenExtension();
        utility::Settings settings;
        settings.interrupted = [this] { return ahead_.IsStopped(); };
        settings.onFailure = [&](const utility::Request&, const std::string& reason) {
            ready.reason = PlainReason(reason, ready.path);
        };
        settings.onWritten = [&](const utility::WrittenImage& image) { ready.converted = image.window; };
        utility::RasterConvert service(std::make_shared<utility::SharedState>(), settings, cells,
                                       std::make_shared<posix::ProcessRunner>());
        std::string target = ready.path;
        service.ConvertExtern(job_.converter, source_, target, job_.quality, &part, true);
        return ready;
    };
}

}  // namespace orvo::tiling
