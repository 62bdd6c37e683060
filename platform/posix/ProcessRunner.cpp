#include "platform/posix/ProcessRunner.h"

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <optional>
#include <system_error>
#include <utility>

namespace orvo::posix {
namespace {

namespace fs = std::filesystem;
using SteadyClock = std::chrono::steady_clock;

constexpr std::size_t kMostBytes = 4096;
constexpr std::size_t kMostLines = 20;
constexpr auto kGrace = std::chrono::seconds(1);  // between SIGTERM and SIGKILL
constexpr int kWatchPause = 50;                   // ms between two looks at the interruption
constexpr int kPollPause = 5;                     // the same where the kernel does not report a program's end

std::string ErrorText(int number) {
    return std::generic_category().message(number);
}

class Descriptor {
  public:
    explicit Descriptor(int fd) : fd_(fd) {}
    ~Descriptor() { Close(); }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    int Get() const { return fd_; }
    void Close() {
        if (fd_ >= 0) ::close(std::exchange(fd_, -1));
    }

  private:
    int fd_;
};

/// The end of a stream of text.
class Tail {
  public:
    void Add(const char* data, std::size_t size) {
        text_.append(data, size);
        if (text_.size() > 2 * kMostBytes) Cut();
    }

    /// Whole lines where more than one is left, without the last line's end.
    std::string Take() {
        Cut();
        while (!text_.empty() && (text_.back() == '\n' || text_.back() == '\r')) text_.pop_back();
        std::size_t start = text_.size();
        for (std::size_t lines = 0; lines < kMostLines && start != std::string::npos; ++lines) {
            start = start == 0 ? std::string::npos : text_.rfind('\n', start - 1);
        }
        if (start != std::string::npos) {
            text_.erase(0, start + 1);
        } else if (cut_ && text_.find('\n') != std::string::npos) {
            text_.erase(0, text_.find('\n') + 1);
        }
        return std::move(text_);
    }

  private:
    void Cut() {
        if (text_.size() <= kMostBytes) return;
        std::size_t surplus = text_.size() - kMostBytes;
        while (surplus < text_.size() && (static_cast<unsigned char>(text_[surplus]) & 0xC0) == 0x80)
            ++surplus;
        text_.erase(0, surplus);
        cut_ = true;
    }

    std::string text_;
    bool cut_ = false;
};

/// A started program. It does not outlive this object unless it is left running.
class Child {
  public:
    explicit Child(pid_t pid) : pid_(pid), watch_(static_cast<int>(::syscall(SYS_pidfd_open, pid, 0))) {}
    ~Child() {
        if (reaped_) return;
        Signal(SIGKILL);
        Reap();
    }
    Child(const Child&) = delete;
    Child& operator=(const Child&) = delete;

    /// Becomes readable at the program's end; −1 where the kernel has no such thing.
    int Watch() const { return watch_.Get(); }

    /// Whether it has ended. Its process group stays addressable until it is reaped.
    bool Ended() const {
        siginfo_t info{};
        const int result = ::waitid(P_PID, static_cast<id_t>(pid_), &info, WEXITED | WNOHANG | WNOWAIT);
        return result == 0 ? info.si_pid == pid_ : errno == ECHILD;
    }

    void Signal(int number) const { ::kill(-pid_, number); }

    void LeaveRunning() { reaped_ = true; }

    /// Waits for the end; the status as waitpid gives it, nothing where the process ignores its children.
    std::optional<int> Reap() {
        int status = 0;
        pid_t result = 0;
        do {
            result = ::waitpid(pid_, &status, 0);
        } while (result < 0 && errno == EINTR);
        reaped_ = true;
        return result == pid_ ? std::optional(status) : std::nullopt;
    }

  private:
    pid_t pid_;
    Descriptor watch_;
    bool reaped_ = false;
};

/// The program's file: by path against the current folder, a bare name along PATH. Empty where PATH lacks it.
std::string Locate(const std::string& program) {
    std::error_code ignored;
    if (program.find('/') != std::string::npos) return fs::absolute(program, ignored).string();
    const char* variable = std::getenv("PATH");
    const std::string path = variable == nullptr ? "/usr/local/bin:/usr/bin:/bin" : variable;
    for (std::size_t at = 0; at <= path.size() && !program.empty();) {
        const std::size_t end = std::min(path.find(':', at), path.size());
        const fs::path candidate = fs::absolute(fs::path(path.substr(at, end - at)) / program, ignored);
        struct stat found {};
        const bool file = ::stat(candidate.c_str(), &found) == 0 && S_ISREG(found.st_mode);
        if (file && ::access(candidate.c_str(), X_OK) == 0) return candidate.string();
        at = end + 1;
    }
    return {};
}

struct SpawnSettings {
    SpawnSettings() {
        ::posix_spawn_file_actions_init(&actions);
        ::posix_spawnattr_init(&attributes);
    }
    ~SpawnSettings() {
        ::posix_spawnattr_destroy(&attributes);
        ::posix_spawn_file_actions_destroy(&actions);
    }
    SpawnSettings(const SpawnSettings&) = delete;
    SpawnSettings& operator=(const SpawnSettings&) = delete;

    posix_spawn_file_actions_t actions{};
    posix_spawnattr_t attributes{};
};

/// 0 or the number of the failure.
/// @param place POSIX_SPAWN_SETPGROUP or POSIX_SPAWN_SETSID: a process group or a session of its own
int Spawn(const std::string& file, const std::string& program, const std::vector<std::string>& arguments,
          const std::string& workingFolder, int output, int place, pid_t& pid) {
    SpawnSettings with;
    ::posix_spawn_file_actions_adddup2(&with.actions, output, STDOUT_FILENO);
    ::posix_spawn_file_actions_adddup2(&with.actions, output, STDERR_FILENO);
    ::posix_spawn_file_actions_addopen(&with.actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    ::posix_spawn_file_actions_addclosefrom_np(&with.actions, STDERR_FILENO + 1);
    if (!workingFolder.empty()) ::posix_spawn_file_actions_addchdir_np(&with.actions, workingFolder.c_str());
    sigset_t none;
    sigset_t all;
    ::sigemptyset(&none);
    ::sigfillset(&all);
    ::posix_spawnattr_setsigmask(&with.attributes, &none);
    ::posix_spawnattr_setsigdefault(&with.attributes, &all);
    ::posix_spawnattr_setpgroup(&with.attributes, 0);
    ::posix_spawnattr_setflags(&with.attributes,
                               static_cast<short>(place | POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETSIGMASK));
    std::vector<std::string> texts{program};
    texts.insert(texts.end(), arguments.begin(), arguments.end());
    std::vector<char*> argv;
    argv.reserve(texts.size() + 1);
    for (std::string& text : texts) argv.push_back(text.data());
    argv.push_back(nullptr);
    return ::posix_spawn(&pid, file.c_str(), &with.actions, &with.attributes, argv.data(), environ);
}

/// Reads what is there; false at the stream's end.
bool ReadSome(int fd, Tail& tail) {
    std::array<char, 4096> buffer{};
    const ssize_t count = ::read(fd, buffer.data(), buffer.size());
    if (count > 0) tail.Add(buffer.data(), static_cast<std::size_t>(count));
    return count > 0 || (count < 0 && errno == EINTR);
}

/// Collects output until the program has ended.
void Watch(Child& child, int output, Tail& tail, const std::function<bool()>& interrupted) {
    std::array<pollfd, 2> events{{{output, POLLIN, 0}, {child.Watch(), POLLIN, 0}}};
    std::optional<SteadyClock::time_point> killAt;
    while (!child.Ended()) {
        if (!killAt && interrupted && interrupted()) {
            child.Signal(SIGTERM);
            killAt = SteadyClock::now() + kGrace;
        }
        if (killAt && SteadyClock::now() >= *killAt) child.Signal(SIGKILL);
        const int pause = child.Watch() < 0 || killAt ? kPollPause : kWatchPause;
        if (::poll(events.data(), events.size(), pause) <= 0) continue;
        if (events[0].revents != 0 && !ReadSome(output, tail)) events[0].fd = -1;
    }
    if (killAt) child.Signal(SIGKILL);  // what ignored the first signal below the program
}

/// What is left in the pipe; another process may still hold it open and even write to it.
void Drain(int output, Tail& tail) {
    ::fcntl(output, F_SETFL, O_NONBLOCK);
    for (int reads = 0; reads < 64 && ReadSome(output, tail); ++reads) {
    }
}

/// Waits for the end, no longer than `patience`.
bool EndsWithin(const Child& child, std::chrono::milliseconds patience) {
    const auto until = SteadyClock::now() + patience;
    while (!child.Ended()) {
        if (SteadyClock::now() >= until) return false;
        pollfd event{child.Watch(), POLLIN, 0};
        ::poll(&event, 1, kPollPause);
    }
    return true;
}

void Store(const std::optional<int>& status, ProcessResult& result) {
    if (!status) return;
    if (WIFEXITED(*status)) result.exitCode = WEXITSTATUS(*status);
    if (WIFSIGNALED(*status)) result.signal = WTERMSIG(*status);
}

/// A result for a program that did not start.
ProcessResult NotStarted(const std::string& reason) {
    ProcessResult result;
    result.output = reason;
    return result;
}

constexpr const char* kNotFound = "no program of that name along PATH";

}  // namespace

ProcessResult ProcessRunner::Run(const std::string& program, const std::vector<std::string>& arguments,
                                 const std::string& workingFolder, const std::function<bool()>& interrupted) {
    const std::string file = Locate(program);
    if (file.empty()) return NotStarted(kNotFound);
    std::array<int, 2> ends{-1, -1};
    if (::pipe2(ends.data(), O_CLOEXEC) != 0) return NotStarted(ErrorText(errno));
    Descriptor output(ends[0]);
    Descriptor input(ends[1]);
    pid_t pid = 0;
    if (const int failed =
            Spawn(file, program, arguments, workingFolder, input.Get(), POSIX_SPAWN_SETPGROUP, pid);
        failed != 0) {
        return NotStarted(ErrorText(failed));
    }
    Child child(pid);
    input.Close();
    ProcessResult result;
    result.started = true;
    Tail tail;
    Watch(child, output.Get(), tail, interrupted);
    Drain(output.Get(), tail);
    Store(child.Reap(), result);
    result.output = tail.Take();
    return result;
}

ProcessResult ProcessRunner::Start(const std::string& program, const std::vector<std::string>& arguments,
                                   std::chrono::milliseconds patience) {
    std::erase_if(left_, [](pid_t pid) { return ::waitpid(pid, nullptr, WNOHANG) != 0; });
    const std::string file = Locate(program);
    if (file.empty()) return NotStarted(kNotFound);
    const Descriptor silence(::open("/dev/null", O_WRONLY | O_CLOEXEC));
    pid_t pid = 0;
    if (const int failed = Spawn(file, program, arguments, "", silence.Get(), POSIX_SPAWN_SETSID, pid);
        failed != 0) {
        return NotStarted(ErrorText(failed));
    }
    Child child(pid);
    ProcessResult result;
    result.started = true;
    if (EndsWithin(child, patience)) {
        Store(child.Reap(), result);
    } else {
        child.LeaveRunning();
        left_.push_back(pid);
    }
    return result;
}

}  // namespace orvo::posix
