#include "platform/gdal/SourceFiles.h"

#include <cpl_conv.h>
#include <cpl_minixml.h>
#include <cpl_string.h>
#include <gdal_priv.h>

#include <filesystem>
#include <set>

#include "platform/gdal/ErrorCapture.h"

namespace orvo::gdal {
namespace {

namespace fs = std::filesystem;

bool IsOnDisk(const std::string& path) {
    std::error_code failed;
    return !path.empty() && fs::exists(path, failed);
}

/// The longest path that begins at a place in a name and stands on the disk; empty where none does.
std::string PathAt(std::string_view name, std::size_t at) {
    for (std::size_t end = name.size(); end != std::string_view::npos && end > at;
         end = name.find_last_of("/:\"}|<", end - 1)) {
        std::string path(name.substr(at, end - at));
        if (IsOnDisk(path) && path.find_first_not_of("/.") != std::string::npos) return path;
    }
    return {};
}

/// What of a dataset's name stands on the disk: all of it, or the container that it names.
void AddPaths(const std::string& name, std::set<std::string>& files) {
    if (IsOnDisk(name)) {
        files.insert(name);
        return;
    }
    for (std::size_t at = 0, mark = 0; mark != std::string::npos; at = mark + 1) {
        const std::string path = PathAt(name, at);
        if (!path.empty()) {
            files.insert(path);
            return;
        }
        mark = name.find_first_of("/:,\"{", at);
    }
}

/// Of a virtual dataset, as a file or as a text; null for others.
CPLXMLTreeCloser Definition(const std::string& name) {
    const ErrorCapture ignored;
    if (name.find("VRTData") != std::string::npos) return CPLXMLTreeCloser(CPLParseXMLString(name.c_str()));
    const bool isFile = EQUAL(CPLGetExtension(name.c_str()), "vrt");
    return CPLXMLTreeCloser(isFile ? CPLParseXMLFile(name.c_str()) : nullptr);
}

class Walk {
  public:
    void Add(GDALDataset& dataset) {
        const CPLStringList list(dataset.GetFileList());
        for (int i = 0; i < list.size(); ++i) Add(list[i]);
    }
    void Add(const std::string& name) {
        if (!seen_.insert(name).second) return;
        const CPLXMLTreeCloser definition = Definition(name);
        const bool isText = name.starts_with('<');
        if (!isText) AddPaths(name, files_);
        AddSources(definition.get(), isText ? "" : CPLGetPath(name.c_str()));
    }
    std::vector<std::string> Files() const { return {files_.begin(), files_.end()}; }

  private:
    void AddSources(const CPLXMLNode* node, const std::string& folder) {
        for (; node != nullptr; node = node->psNext) {
            const bool isSource = EQUAL(node->pszValue, "SrcDataSource") ||
                                  EQUAL(node->pszValue, "SourceFilename") ||
                                  EQUAL(node->pszValue, "SourceDataset");
            if (isSource) {
                const std::string name = CPLGetXMLValue(node, nullptr, "");
                Add(name);
                Add(CPLFormFilename(folder.c_str(), name.c_str(), nullptr));  // one of the two exists
            }
            AddSources(node->psChild, folder);
        }
    }

    std::set<std::string> seen_, files_;
};

}  // namespace

std::vector<std::string> SourceFiles(GDALDataset& dataset, const std::string& name) {
    Walk walk;
    walk.Add(dataset);
    walk.Add(name);
    return walk.Files();
}

}  // namespace orvo::gdal
