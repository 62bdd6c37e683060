// Objects that count their references, and what they keep loaded.
#pragma once

#include <atomic>

#include "platform/windows/system/Win32.h"

namespace orvo::windows {

/// One reason for the DLL that this code is linked into to stay loaded: an object that somebody holds, or a
/// client's lock.
class ServerUse {
  public:
    ServerUse() { Begin(); }
    ~ServerUse() { End(); }
    ServerUse(const ServerUse&) = delete;
    ServerUse& operator=(const ServerUse&) = delete;

    static void Begin() { ++count_; }
    static void End() { --count_; }
    static long Count() { return count_; }

  private:
    static inline std::atomic<long> count_{0};
};

/// The base of an object that is made with `new`, holds one reference then and deletes itself with its last.
template <class... Interfaces>
class Counted : public Interfaces... {
  public:
    virtual ~Counted() = default;
    Counted(const Counted&) = delete;
    Counted& operator=(const Counted&) = delete;

    ULONG STDMETHODCALLTYPE AddRef() override {
        return static_cast<ULONG>(::InterlockedIncrement(&references_));
    }
    ULONG STDMETHODCALLTYPE Release() override {
        const LONG left = ::InterlockedDecrement(&references_);
        if (left != 0) return static_cast<ULONG>(left);
        references_ = kEnding;  // an end may show a dialog, in which a client may still count up and down
        delete this;
        return 0;
    }

  protected:
    Counted() = default;

  private:
    static constexpr LONG kEnding = 1 << 30;

    ServerUse use_;
    LONG references_ = 1;
};

}  // namespace orvo::windows
