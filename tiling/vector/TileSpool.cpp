#include "tiling/vector/TileSpool.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>

#include "tiling/Errors.h"

namespace orvo::tiling {
namespace {

constexpr std::size_t kBlock = std::size_t{1} << 20U;  ///< bytes written at a time

[[noreturn]] void Fail(const char* what) {
    throw RunError(std::string(what) + ": " + std::strerror(errno));
}

void WriteAll(int file, std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t written = write(file, bytes.data(), bytes.size());
        if (written < 0 && errno == EINTR) continue;
        if (written <= 0) Fail("cannot keep what the tiles will hold in a temporary file in OUTDIR");
        bytes.remove_prefix(static_cast<std::size_t>(written));
    }
}

}  // namespace

TileSpool::~TileSpool() {
    if (file_ >= 0) close(file_);
}

void TileSpool::Add(std::int64_t tile, std::string_view record) {
    Bucket& bucket = buckets_[tile];
    bucket.held.append(record);
    ++bucket.count;
    held_ += record.size();
    if (held_ > memory_) Spill();
}

void TileSpool::Open() {
    std::string path = folder_ + "/.orvo-tile-XXXXXX";
    file_ = mkostemp(path.data(), O_CLOEXEC);
    if (file_ < 0) Fail("cannot make a temporary file in OUTDIR");
    unlink(path.c_str());
}

void TileSpool::Spill() {
    if (file_ < 0) Open();
    std::string block;
    for (auto& [tile, bucket] : buckets_) {
        if (bucket.held.empty()) continue;
        bucket.chunks.push_back({end_, bucket.held.size()});
        end_ += static_cast<std::int64_t>(bucket.held.size());
        block += bucket.held;
        std::string().swap(bucket.held);
        if (block.size() < kBlock) continue;
        WriteAll(file_, block);
        block.clear();
    }
    WriteAll(file_, block);
    held_ = 0;
}

std::map<std::int64_t, std::int64_t> TileSpool::Counts() const {
    std::map<std::int64_t, std::int64_t> counts;
    for (const auto& [tile, bucket] : buckets_) counts.emplace(tile, bucket.count);
    return counts;
}

void TileSpool::Read(std::int64_t tile, const std::function<void(std::string_view chunk)>& take) const {
    const Bucket& bucket = buckets_.at(tile);
    std::string chunk;
    for (const Chunk& stored : bucket.chunks) {
        chunk.resize(stored.size);
        for (std::size_t got = 0; got < stored.size;) {
            const ssize_t count = pread(file_, chunk.data() + got, stored.size - got,
                                        static_cast<off_t>(stored.offset) + static_cast<off_t>(got));
            if (count < 0 && errno == EINTR) continue;
            if (count <= 0) Fail("cannot read the temporary file in OUTDIR");
            got += static_cast<std::size_t>(count);
        }
        take(chunk);
    }
    if (!bucket.held.empty()) take(bucket.held);
}

}  // namespace orvo::tiling
