#include "tiling/output/WorkFolder.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>

#include "tiling/Errors.h"
#include "tiling/output/Publish.h"

namespace fs = std::filesystem;

namespace orvo::tiling {

WorkFolder::WorkFolder(const std::string& outdir) : path_(outdir + "/.orvo-tile-XXXXXX") {
    if (mkdtemp(path_.data()) == nullptr)
        throw RunError("cannot make a folder in \"" + outdir + "\": " + std::strerror(errno));
}

WorkFolder::~WorkFolder() {
    std::error_code ignored;
    fs::remove_all(path_, ignored);
}

std::vector<std::string> WorkFolder::Publish(const std::string& name, const std::string& folder,
                                             bool others) const {
    std::vector<std::string> names;
    for (auto entry = others ? fs::directory_iterator(path_) : fs::directory_iterator();
         entry != fs::end(entry); ++entry) {
        std::string other = entry->path().filename().string();
        // What cannot be told from the folders of others is not made: nobody could clear it away.
        if (!entry->is_regular_file())
            throw RunError("the format keeps \"" + other +
                           "\" beside its file, which is none; choose another --format");
        if (other != name) names.push_back(std::move(other));
    }
    names.push_back(name);
    for (std::size_t i = 0; i < names.size(); ++i) {
        if (MoveNew(path_ + "/" + names[i], folder + "/" + names[i])) continue;
        for (std::size_t moved = 0; moved < i; ++moved)
            MoveNew(folder + "/" + names[moved], path_ + "/" + names[moved]);
        throw RunError("\"" + names[i] + "\" is in the folder already; move it away, or name another OUTDIR");
    }
    names.pop_back();
    return names;
}

void WorkFolder::Clear() const {
    std::error_code ignored;
    for (const auto& entry : fs::directory_iterator(path_, ignored)) fs::remove_all(entry.path(), ignored);
}

std::string WorkFolder::WithoutPath(std::string text) const {
    const std::string prefix = path_ + "/";
    for (std::size_t at = text.find(prefix); at != std::string::npos; at = text.find(prefix, at))
        text.erase(at, prefix.size());
    return text;
}

}  // namespace orvo::tiling
