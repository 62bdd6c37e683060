#include "tiling/output/PartRecords.h"

#include <filesystem>
#include <utility>

#include "tiling/Errors.h"
#include "tiling/Summary.h"
#include "tiling/output/EarlierRun.h"
#include "tiling/output/TileIndex.h"

namespace orvo::tiling {
namespace {

/// A word as a shell takes it.
std::string Quoted(const std::string& word) {
    constexpr const char* kPlain =
        "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789_-+=:,./@%^";
    if (!word.empty() && word.find_first_not_of(kPlain) == std::string::npos) return word;
    std::string text = "'";
    for (const char c : word) text += c == '\'' ? std::string("'\\''") : std::string(1, c);
    return text + "'";
}

/// "; " between the members of a list.
void AddMember(std::string& list, const std::string& member) {
    list += list.empty() ? "" : "; ";
    list += member;
}

std::map<int, std::string> RecordsIn(const std::string& folder, int& parts) {
    std::map<int, std::string> found;
    std::error_code missing;
    for (const auto& entry : std::filesystem::directory_iterator(folder, missing)) {
        const std::string name = entry.path().filename().string();
        const auto part = PartOfRecord(name);
        if (!part) continue;
        if (parts != 0 && parts != part->parts)
            throw RunError("OUTDIR holds records of " + std::to_string(parts) + " parts and of " +
                           std::to_string(part->parts) + "; remove those of one division");
        parts = part->parts;
        if (part->part <= parts) found[part->part] = name;
    }
    return found;
}

}  // namespace

Json PartHead(const PartNumber& part, const std::vector<std::string>& command) {
    return {{"generator", kGenerator}, {"part", part.part}, {"of", part.parts}, {"command", command}};
}

PartRecords::PartRecords(const std::string& folder) {
    int parts = 0;
    const std::map<int, std::string> found = RecordsIn(folder, parts);
    if (found.empty()) throw RunError("OUTDIR holds no part of a job; make them with --part K/N");
    records_.resize(static_cast<std::size_t>(parts));
    for (const auto& [part, name] : found) {
        names_.push_back(name);
        const std::string path = (std::filesystem::path(folder) / name).string();
        records_[static_cast<std::size_t>(part - 1)] = ReadOurs(path);
    }
    std::string missing;
    for (int part = 1; part <= parts; ++part) {
        if (!found.contains(part)) AddMember(missing, "part " + std::to_string(part) + " by " + Remedy(part));
    }
    if (!missing.empty()) throw RunError("parts are missing; make them, then merge again: " + missing);
}

std::string PartRecords::Remedy(int part) const {
    std::string text;
    for (const Json& record : records_) {
        if (record.is_null() || !text.empty()) continue;
        for (const std::string& word : record.value("command", std::vector<std::string>{}))
            text += Quoted(word) + " ";
    }
    return text + "--part " + std::to_string(part) + "/" + std::to_string(Count());
}

void PartRecords::ForEach(const std::function<void(const Json& record)>& take) const {
    for (int part = 1; part <= Count(); ++part) {
        try {
            take(records_[static_cast<std::size_t>(part - 1)]);
        } catch (const std::exception& error) {
            throw RunError("\"" + PartRecordName({part, Count()}) + "\" is no record of a part (" +
                           error.what() + ")");
        }
    }
}

void PartRecords::RequireNone(const std::map<int, std::int64_t>& missing) const {
    std::string list;
    for (const auto& [part, count] : missing)
        AddMember(list, Counted(count, "tile") + " of part " + std::to_string(part) + " by " + Remedy(part));
    if (!list.empty()) throw RunError("tiles are missing; make them, then merge again: " + list);
}

void AppendTexts(const Json& record, const char* member, std::vector<std::string>& to) {
    for (std::string& text : record.at(member).get<std::vector<std::string>>()) to.push_back(std::move(text));
}

}  // namespace orvo::tiling
