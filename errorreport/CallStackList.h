// The trace of the procedures entered last.
#pragma once

#include <array>
#include <string>
#include <vector>

namespace orvo {

/// The 20 newest entries, newest first. Once full, entering costs no memory.
class CallStackList {
  public:
    static constexpr std::size_t kMost = 20;

    void PushFront(const std::string& entry);
    std::size_t Count() const { return count_; }
    const std::string& At(std::size_t position) const { return ring_[(newest_ + position) % kMost]; }
    std::vector<std::string> Entries() const;

  private:
    std::array<std::string, kMost> ring_;
    std::size_t newest_ = 0;
    std::size_t count_ = 0;
};

}  // namespace orvo
