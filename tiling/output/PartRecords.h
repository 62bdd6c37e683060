// What the parts of a job have left for the run that merges them.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "tiling/Parts.h"
#include "tiling/output/JsonText.h"

namespace orvo::tiling {

/// What the record of every part says.
/// @param command that makes the part, words of a shell
Json PartHead(const PartNumber& part, const std::vector<std::string>& command);

/// All parts of a job, by the records in its folder.
class PartRecords {
  public:
    /// Fails with RunError where there are none, or where some are missing; its text names these.
    explicit PartRecords(const std::string& folder);

    int Count() const { return static_cast<int>(records_.size()); }
    const std::vector<std::string>& Names() const { return names_; }
    /// Hands out the records in the order of the parts. Fails with RunError, which names the record, where
    /// `take` fails.
    void ForEach(const std::function<void(const Json& record)>& take) const;
    /// Fails with RunError where tiles are missing; its text names the parts, and what makes them.
    /// @param missing tiles by part
    void RequireNone(const std::map<int, std::int64_t>& missing) const;

  private:
    std::string Remedy(int part) const;

    std::vector<std::string> names_;
    std::vector<Json> records_;  ///< by part
};

/// Adds a record's list of texts to another.
void AppendTexts(const Json& record, const char* member, std::vector<std::string>& to);

}  // namespace orvo::tiling
