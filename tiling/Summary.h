// What every run comes to.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace orvo::tiling {

enum class Outcome {
    Complete,    ///< all tiles are there, and nothing was shown to the user
    Incomplete,  ///< something failed or is missing
    Interrupted
};

/// Two kinds of runs add what they count. Paths are full, and empty for what was not written.
class Summary {
  public:
    virtual ~Summary() = default;

    std::string input;   ///< as given
    std::string outdir;  ///< absolute
    std::string index, preview;
    std::vector<std::string> notices;  ///< what a user should know
    std::vector<std::string> errors;   ///< failures that belong to no tile
    int shown = 0;                     ///< failures and messages that were shown during the run
    bool interrupted = false;

    Outcome Result() const;
    /// For people, a sentence each: errors and failures always, the rest unless `quiet`.
    std::vector<std::string> Lines(bool quiet) const;
    /// As one JSON object with a line break at its end; docs/command-line.md names the members.
    virtual std::string AsJson() const = 0;

  protected:
    Summary() = default;
    Summary(const Summary&) = default;
    Summary& operator=(const Summary&) = default;

    /// Whether each tile is accounted for as it should be.
    virtual bool HasAllTiles() const = 0;
    virtual std::vector<std::string> FailureLines() const = 0;
    /// What is said unless `quiet`, and what even then.
    virtual std::vector<std::string> SkippedLines(bool quiet) const = 0;
    virtual std::vector<std::string> AllNotices() const { return notices; }
    /// The counts, at the end.
    virtual std::string ResultLine() const = 0;
};

/// "1 tile", "2 tiles".
std::string Counted(std::int64_t count, const std::string& thing);

}  // namespace orvo::tiling
