// Files that the library writes, with every failed write seen.
#pragma once

#include <memory>
#include <string>

namespace orvo::gdal {

/// Many of the library's drivers do not look at what a write, flush or close returns, and some crash where a
/// file cannot be made. Under the names that this gives they reach the same files; what fails is remembered,
/// and a file that cannot be made goes into memory instead, so that a driver comes to its end.
class CheckedFiles {
  public:
    CheckedFiles();
    /// The drivers must have closed their files.
    ~CheckedFiles();
    CheckedFiles(const CheckedFiles&) = delete;
    CheckedFiles& operator=(const CheckedFiles&) = delete;

    /// The library's name for a file of that path.
    std::string NameOf(const std::string& path) const { return prefix_ + path; }
    /// The system's reason for the first failure; empty where all was written.
    std::string Failure() const;
    /// A text with paths in place of such names.
    std::string WithPaths(std::string text) const;

    struct Record;  ///< for the library's calls

  private:
    std::shared_ptr<Record> record_;
    std::string prefix_;
};

}  // namespace orvo::gdal
