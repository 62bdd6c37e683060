#include "errorreport/CallStackList.h"

namespace orvo {
namespace {
constexpr std::size_t kLongestEntry = 320;  // bytes; the descriptors are shorter
}

void CallStackList::PushFront(const std::string& entry) {
    const std::size_t next = (newest_ + kMost - 1) % kMost;
    std::string& slot = ring_[next];
    if (count_ < kMost) slot.reserve(kLongestEntry);
    slot.assign(entry);
    newest_ = next;
    if (count_ < kMost) ++count_;
}

std::vector<std::string> CallStackList::Entries() const {
    std::vector<std::string> entries;
    for (std::size_t i = 0; i < count_; ++i) entries.push_back(At(i));
    return entries;
}

}  // namespace orvo
