// What a run came to: for people on standard error, as JSON on standard output, and as exit code.
#pragma once

#include <iosfwd>
#include <string>
#include <vector>

#include "platform/Types.h"

namespace orvo::host {

struct CellFailure {
    Long column = 0;
    Long row = 0;
    std::string reason;
};

class Summary {
  public:
    void SetExpected(Long cells) { expected_ = cells; }
    void AddWritten() { ++written_; }
    void AddOutside() { ++outside_; }
    void AddFailure(CellFailure failure) { failures_.push_back(std::move(failure)); }
    /// A tile that was written in the end although something failed before.
    void AddRecovery(const std::string& reason) { recoveries_.push_back(reason); }
    void AddNotice(std::string notice) { notices_.push_back(std::move(notice)); }
    /// A failure that belongs to no cell.
    void AddError(std::string error) { errors_.push_back(std::move(error)); }
    void SetLeftovers(std::vector<std::string> names) { leftovers_ = std::move(names); }
    void SetProducts(std::string index, std::string vrt, std::string preview);
    /// @param count of failures and messages that were shown during the run
    void SetShown(int count) { shown_ = count; }
    void SetInterrupted(bool interrupted) { interrupted_ = interrupted; }

    /// Whether the run has left no file.
    bool LeavesNothing() const { return written_ == 0 && leftovers_.empty() && index_.empty(); }
    Long NotReached() const;
    int ExitCode() const;
    /// Errors always; the rest unless `quiet`. Equal reasons are counted, not repeated.
    void Narrate(std::ostream& out, bool quiet, const std::string& folder) const;
    std::string Json(const std::string& input, const std::string& folder) const;

  private:
    std::vector<std::string> AllNotices() const;

    Long expected_ = 0;
    Long written_ = 0;
    Long outside_ = 0;
    std::vector<CellFailure> failures_;
    std::vector<std::string> recoveries_, notices_, errors_, leftovers_;
    std::string index_, vrt_, preview_;
    int shown_ = 0;
    bool interrupted_ = false;
};

}  // namespace orvo::host
