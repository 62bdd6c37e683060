// Putting the finished files of a run under names that nobody else has.
#pragma once

#include <string>

namespace orvo::host {

/// A file under a hidden name of its own in a folder, until it is published. Removed with this object.
class DraftFile {
  public:
    /// Takes the hidden name. Fails with RunError. @param extension with its dot
    DraftFile(const std::string& folder, const std::string& extension);
    ~DraftFile();
    DraftFile(const DraftFile&) = delete;
    DraftFile& operator=(const DraftFile&) = delete;

    /// The hidden name, without folder.
    const std::string& Name() const { return name_; }
    /// Writes the whole text; write, flush and close are checked. Fails with RunError.
    void Write(const std::string& text);
    /// Gives the file its name in the same folder unless that is taken; false where it is. Fails with
    /// RunError.
    bool Publish(const std::string& name);
    /// Takes the name back.
    void Withdraw();

  private:
    std::string folder_;
    std::string name_;       ///< the hidden name
    std::string published_;  ///< the name it has now; empty while hidden
};

/// name.ext for 1, name_2.ext for 2 and so on.
std::string NumberedName(const std::string& stem, int number, const std::string& extension);

}  // namespace orvo::host
