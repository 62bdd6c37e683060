#include "tiling/output/EarlierRun.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <functional>
#include <stdexcept>
#include <string_view>

#include "tiling/Errors.h"
#include "tiling/output/TileIndex.h"
#include "tiling/output/TileNames.h"
#include "tiling/output/WorkFolder.h"

namespace fs = std::filesystem;

namespace orvo::tiling {
namespace {

bool IsDigit(char c) {
    return c >= '0' && c <= '9';
}
bool IsPlain(char c) {
    return IsDigit(c) || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

template <class Test>
bool AllOf(std::string_view text, Test&& test) {
    return !text.empty() && std::all_of(text.begin(), text.end(), test);
}

/// stem.ext or stem_7.ext
bool IsNumbered(std::string_view name, std::string_view stem, std::string_view extension) {
    if (!name.starts_with(stem) || !name.ends_with(extension) ||
        name.size() < stem.size() + extension.size()) {
        return false;
    }
    const std::string_view number = name.substr(stem.size(), name.size() - stem.size() - extension.size());
    return number.empty() || (number.front() == '_' && AllOf(number.substr(1), IsDigit));
}

/// A tile, its world file or an exported TIFF: "i", the time of day, whatever makes the name free, an
/// extension.
bool IsTileName(std::string_view name) {
    const auto dot = name.find('.');
    if (dot == std::string_view::npos || dot < 7 || name.front() != 'i') return false;
    const auto isFreePart = [](char c) { return IsPlain(c) || c == '_' || c == '-'; };
    return AllOf(name.substr(1, 6), IsDigit) && AllOf(name.substr(0, dot), isFreePart) &&
           AllOf(name.substr(dot + 1), IsPlain);
}

/// A vector tile or a file that goes with it: any beginning, "grp", a number, an extension.
bool IsVectorTileName(std::string_view name) {
    const auto dot = name.rfind('.');
    const auto mark = name.rfind("grp", dot);
    if (dot == std::string_view::npos || mark == std::string_view::npos || name.front() == '.') return false;
    return name.find_first_of("/\\") == std::string_view::npos &&
           AllOf(name.substr(mark + 3, dot - mark - 3), IsDigit) && AllOf(name.substr(dot + 1), IsPlain);
}

bool IsIndexName(std::string_view name) {
    return IsNumbered(name, "tiles", ".geojson");
}

bool IsProduct(std::string_view name) {
    return IsNumbered(name, "skipped", ".geojson") || IsNumbered(name, "mosaic", ".vrt") ||
           IsNumbered(name, "index", ".html");
}

std::string StemOf(const std::string& name) {
    return name.substr(0, name.rfind('.'));
}

class Reader {
  public:
    Reader(std::string folder, const PartNumber& part) : folder_(std::move(folder)), part_(part) {}

    EarlierRun Read() {
        std::error_code missing;
        const fs::path job = fs::path(folder_) / kJobFile;
        if (fs::exists(fs::symlink_status(job, missing))) run_.job = ReadOurs(job.string());
        SetNames();
        FindFiles();
        for (const std::string& index : run_.indexes) AddIndex(index);
        for (const std::string& record : run_.records) AddRecord(record);
        for (const std::string& name : workFolders_) AddEntries(WorkFolder::Noted(folder_, name), name);
        return std::move(run_);
    }

  private:
    /// By what the job says of its names; else by what names are usual.
    void SetNames() {
        const bool known = run_.job.contains("names");
        const Json names = known ? run_.job["names"] : Json::object();
        named_ = NamesLike(names.value("pattern", kUsualTileNames), names.value("source", ""));
    }

    void FindFiles() {
        std::error_code missing;
        for (const auto& entry : fs::directory_iterator(folder_, missing)) {
            std::string name = entry.path().filename().string();
            if (IsIndexName(name)) run_.indexes.push_back(name);
            const std::optional<PartNumber> record = PartOfRecord(name);
            if (record && (part_.parts == 0 || *record == part_)) run_.records.push_back(name);
            const bool works = part_.parts == 0 ? IsWorkFolderName(name) : name == WorkFolderName(part_);
            if (works) workFolders_.push_back(name);
        }
        std::ranges::sort(run_.indexes);
        std::ranges::sort(run_.records);
        std::ranges::sort(workFolders_);
    }

    void AddEntries(const std::vector<WorkFolder::Entry>& entries, const std::string& name) {
        const std::string where = "\"" + folder_ + "/" + name + "\"";
        for (const WorkFolder::Entry& entry : entries) {
            AddTile(entry.front(), where);
            for (std::size_t i = 1; i < entry.size(); ++i) AddCompanion(entry[i], where);
        }
    }

    void AddRecord(const std::string& where) {
        const Json record = ReadOurs(folder_ + "/" + where);
        try {
            AddEntries(record.at("tiles").get<std::vector<WorkFolder::Entry>>(), where);
            for (const std::string& leftover : record.at("leftovers").get<std::vector<std::string>>())
                AddCompanion(leftover, where);
        } catch (const Json::exception& error) {
            throw UsageError("\"" + folder_ + "/" + where + "\" is no record of a part (" + error.what() +
                             "); move it away, or name another OUTDIR");
        }
    }

    void AddIndex(const std::string& name) {
        const std::string path = (fs::path(folder_) / name).string();
        const Json index = ReadOurs(path);
        try {
            for (const Json& feature : index.at("features"))
                AddTile(feature.at("properties").at("location").get<std::string>(), path);
            for (const std::string& companion : index.at("companions").get<std::vector<std::string>>())
                AddCompanion(companion, path);
        } catch (const Json::exception& error) {
            throw UsageError("\"" + path + "\" is no index that --overwrite or --resume may take up (" +
                             error.what() + "); move it away, or name another OUTDIR");
        }
    }

    bool IsTile(const std::string& name) const {
        const auto dot = name.rfind('.');
        if (dot == std::string::npos || !AllOf(std::string_view(name).substr(dot + 1), IsPlain)) return false;
        return IsTileName(name) || IsVectorTileName(name) || named_(name.substr(0, dot));
    }

    [[noreturn]] static void Refuse(const std::string& where, const std::string& name) {
        throw UsageError(where + " cannot be taken up by --overwrite or --resume (it names \"" + name +
                         "\"); move it away, or name another OUTDIR");
    }

    void AddTile(const std::string& name, const std::string& where) {
        if (!IsTile(name)) Refuse(where, name);
        if (run_.tiles.try_emplace(name).second) byStem_[StemOf(name)] = name;
    }

    /// A product, or a file that begins like a tile: its stem and a dot.
    void AddCompanion(const std::string& name, const std::string& where) {
        auto stem = byStem_.upper_bound(name);
        const bool goesWithTile = stem != byStem_.begin() && name.starts_with((--stem)->first + ".");
        if (goesWithTile && name.find('/', stem->first.size()) == std::string::npos) {
            std::vector<std::string>& others = run_.tiles[stem->second];
            if (std::ranges::find(others, name) == others.end()) others.push_back(name);
        } else if (IsProduct(name)) {
            run_.products.push_back(name);
        } else if (IsTile(name)) {  // what runs before this version left unfinished
            run_.tiles.try_emplace(name);
        } else {
            Refuse(where, name);
        }
    }

    std::string folder_;
    PartNumber part_;
    EarlierRun run_;
    std::vector<std::string> workFolders_;
    std::function<bool(const std::string&)> named_;
    std::map<std::string, std::string> byStem_;  ///< tiles
};

std::string Short(const Json& value) {
    return value.is_null() ? "nothing" : value.is_string() ? value.get<std::string>() : TextOf(value);
}

}  // namespace

Json ReadOurs(const std::string& path) {
    try {
        if (!fs::is_regular_file(fs::symlink_status(path)))
            throw std::runtime_error("it is not a regular file");
        std::ifstream file(path, std::ios::binary);
        Json content = Json::parse(file);
        if (content.at("generator") != kGenerator) throw std::runtime_error("another program wrote it");
        return content;
    } catch (const std::exception& error) {
        throw UsageError("\"" + path + "\" is no file that --overwrite or --resume may take up (" +
                         error.what() + "); move it away, or name another OUTDIR");
    }
}

EarlierRun ReadEarlierRun(const std::string& folder, const PartNumber& part) {
    return Reader(folder, part).Read();
}

Json JobIn(const std::string& folder) {
    const std::string path = folder + "/" + kJobFile;
    std::error_code missing;
    if (!fs::exists(path, missing))
        throw UsageError("\"" + folder + "\" holds no job.json; make its parts with --part K/N");
    Json job = ReadOurs(path);
    const std::string command = job.value("command", "");
    if ((command == "raster" || command == "vector") && job.contains("source") && job.contains("names"))
        return job;
    throw UsageError("\"" + path + "\" tells of no job that this program makes parts of");
}

std::string Difference(const Json& earlier, const Json& now) {
    const auto at = [](const Json& job, const std::string& key) {
        return job.is_object() && job.contains(key) ? job.at(key) : Json(nullptr);
    };
    Json keys = now;
    if (earlier.is_object()) keys.update(earlier);
    for (const auto& [key, ignored] : keys.items()) {
        const Json before = at(earlier, key), after = at(now, key);
        if (before == after) continue;
        const bool both = before.is_object() && after.is_object();
        return both ? Difference(before, after) : key + " was " + Short(before) + " and is " + Short(after);
    }
    return "";
}

}  // namespace orvo::tiling
