// What became of each cell of the grid, told by the run's progress texts and the growth of its dictionary.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "host/ProgressDisplay.h"
#include "platform/Scripting.h"
#include "platform/Utility.h"
#include "platform/utility/Settings.h"

namespace orvo::host {

struct CellRecord {
    Long column = 0;  ///< counted from 0
    Long row = 0;
    bool inside = false;  ///< it meets the clip area, or there is none
    std::string tile;     ///< file name; empty where none was recorded
    std::shared_ptr<IEnvelope> envelope;
    std::vector<std::string>
        reasons;  ///< what went wrong, in order; also where the tile was written in the end
    std::vector<utility::WrittenImage> images;
};

/// The status object of a run. Give it the dictionary before the run, and hear the services through it.
class TileLedger final : public IStatusDisplay {
  public:
    /// @param columns of the grid
    TileLedger(ProgressDisplay& display, Long columns) : display_(display), columns_(columns) {}

    void Watch(std::shared_ptr<IDictionary> dictionary) { dictionary_ = std::move(dictionary); }
    void AddReason(const std::string& reason);
    void AddImage(const utility::WrittenImage& image);

    void ShowMessage(const std::string& text) override { display_.Note(text); }
    void ShowProgress(const std::string& text, Long maxValue, bool step) override;
    /// Settles the last cell; also needed where the run did not come to its end.
    void Finish();

    const std::vector<CellRecord>& Cells() const { return cells_; }
    /// Reasons that came up before the first cell.
    const std::vector<std::string>& EarlyReasons() const { return early_; }

  private:
    void BeginCell();
    void Settle();

    ProgressDisplay& display_;
    Long columns_;
    std::shared_ptr<IDictionary> dictionary_;
    std::string cellText_;  ///< the text that begins a cell
    Long counted_ = 0;      ///< entries of the dictionary that belong to cells before
    std::vector<CellRecord> cells_;
    std::vector<std::string> early_;
    bool running_ = false;
};

/// The part of a path behind its last separator of either kind.
std::string FileNameOf(const std::string& path);

}  // namespace orvo::host
