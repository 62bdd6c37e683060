// The raster library as this process uses it: started once, silent, its complaints kept.
#pragma once

#include <map>
#include <string>

namespace orvo::gdal {

/// Registers the library's drivers and takes its messages off standard error. Only the first call does
/// anything.
void Start();

/// The first warning of each sort, by what its text begins with.
using Warnings = std::map<std::string, std::string>;

/// Collects what the library complains about on this thread as long as it lives. Scopes may nest.
class Complaints {
  public:
    /// @param warnings gets those too; null for none
    explicit Complaints(Warnings* warnings = nullptr);
    ~Complaints();
    Complaints(const Complaints&) = delete;
    Complaints& operator=(const Complaints&) = delete;

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

/// Sets an option of the library on this thread as long as it lives.
class Option {
  public:
    /// Both texts must outlive this object.
    Option(const char* name, const char* value);
    ~Option();
    Option(const Option&) = delete;
    Option& operator=(const Option&) = delete;

  private:
    const char* name_;
};

/// Keeps the library from writing side files.
struct NoSideFiles : Option {
    NoSideFiles() : Option("GDAL_PAM_ENABLED", "NO") {}
};

}  // namespace orvo::gdal
