// What the raster library reports while it works.
#pragma once

#include <map>
#include <string>

namespace orvo::gdal {

/// The first warning of each sort, by what its text begins with.
using Warnings = std::map<std::string, std::string>;

/// Collects what the library complains about on this thread as long as it lives. Scopes may nest.
class ErrorCapture {
  public:
    /// @param warnings gets those too; null for none
    explicit ErrorCapture(Warnings* warnings = nullptr);
    ~ErrorCapture();
    ErrorCapture(const ErrorCapture&) = delete;
    ErrorCapture& operator=(const ErrorCapture&) = delete;

    /// Whether a failure was reported, or a source ended early, which some drivers only warn of while they
    /// fill the missing cells.
    bool Failed() const { return !first_.empty(); }
    /// The first failure, for it is the most precise; `otherwise` where none was reported.
    std::string Reason(const std::string& otherwise) const { return Failed() ? first_ : otherwise; }
    void Note(bool failure, const char* message);

  private:
    std::string first_;
    Warnings* warnings_;
};

}  // namespace orvo::gdal
