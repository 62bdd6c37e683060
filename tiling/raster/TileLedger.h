// What became of each cell of the grid, as the services tell it.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "platform/Scripting.h"
#include "platform/Utility.h"
#include "platform/utility/Settings.h"
#include "tiling/Callbacks.h"
#include "tiling/raster/CellPlan.h"

namespace orvo::tiling {

/// A reason without the name of the file it is about, on one line: reasons of different tiles become equal.
std::string PlainReason(std::string reason, const std::string& target);

struct CellRecord {
    std::string tile;                  ///< the component's name of the file; empty where none was recorded
    std::vector<std::string> reasons;  ///< what went wrong, in order; also where the tile is there in the end
    std::vector<utility::WrittenImage> images;
};

/// Give it the dictionary before the run, and let it hear the services. As the run's status object it passes
/// texts on to the progress, and reads nothing from them.
class TileLedger final : public IStatusDisplay {
  public:
    /// All must outlive the ledger. @param progress null for none
    /// @param onTile hears of each tile when the component has recorded it, and may add a reason why it is
    /// none after all
    TileLedger(const CellPlan& plan, IProgress* progress,
               std::function<void(std::int64_t index, CellRecord& cell)> onTile)
        : plan_(plan), progress_(progress), onTile_(std::move(onTile)) {}

    void Watch(std::shared_ptr<IDictionary> dictionary) { dictionary_ = std::move(dictionary); }
    /// An envelope is made: while the walk goes on, for its next cell.
    void AddEnvelope();
    /// The index of the cell that a service is asked for; past the last one where it is none.
    std::int64_t IndexOf(const utility::Request& asked) const;
    /// A service has not written what it was asked for.
    void AddFailure(const utility::Request& asked, const std::string& reason);
    void AddImage(const utility::WrittenImage& image);
    /// A failure that no service told of: it belongs to the cell that the walk is at, or to the whole run
    /// before the first.
    void AddReason(const std::string& reason);
    /// The run is at its end, however it came to it.
    void Finish();

    void ShowMessage(const std::string& text) override;
    void ShowProgress(const std::string& text, Long maxValue, bool step) override;

    /// Of the cells that the walk came to, row by row from the top left.
    const std::vector<CellRecord>& Cells() const { return cells_; }
    /// Reasons that came up before the first cell.
    const std::vector<std::string>& EarlyReasons() const { return early_; }

  private:
    CellRecord& CellOf(const utility::Request& asked);
    void CollectEntries();
    void PassNote();

    const CellPlan& plan_;
    IProgress* progress_;
    std::function<void(std::int64_t, CellRecord&)> onTile_;
    std::shared_ptr<IDictionary> dictionary_;
    Long collected_ = 0;  ///< entries of the dictionary that cells have got
    std::vector<CellRecord> cells_;
    std::vector<std::string> early_;
    std::string note_;      ///< the last text; the one that a cell begins with is no note
    bool running_ = false;  ///< the walk has announced itself, and not its end
};

}  // namespace orvo::tiling
