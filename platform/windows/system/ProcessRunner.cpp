#include "platform/windows/system/ProcessRunner.h"

#include <algorithm>

#include "platform/windows/system/WideText.h"
#include "platform/windows/system/Win32.h"

namespace orvo::windows {
namespace {

constexpr DWORD kLook = 50;          // milliseconds between two looks at the interruption
constexpr std::size_t kTail = 2000;  // bytes of output that are kept
constexpr UINT kEnded = 1;

class Handle {
  public:
    Handle() = default;
    explicit Handle(HANDLE handle) : handle_(handle) {}
    ~Handle() { Close(); }
    Handle(const Handle&) = delete;
    Handle& operator=(const Handle&) = delete;
    HANDLE Get() const { return handle_; }
    HANDLE* Out() { return &handle_; }
    void Close() {
        if (handle_ != nullptr && handle_ != INVALID_HANDLE_VALUE) ::CloseHandle(handle_);
        handle_ = nullptr;
    }

  private:
    HANDLE handle_ = nullptr;
};

/// An argument as the C runtime of the program takes it apart again.
std::wstring Quoted(const std::wstring& argument) {
    if (!argument.empty() && argument.find_first_of(L" \t\"") == std::wstring::npos) return argument;
    std::wstring quoted = L"\"";
    std::size_t backslashes = 0;
    for (const wchar_t c : argument) {
        if (c == L'"') quoted.append(backslashes + 1, L'\\');  // those before it are doubled, it gets one
        backslashes = c == L'\\' ? backslashes + 1 : 0;
        quoted += c;
    }
    return quoted.append(backslashes, L'\\') + L"\"";
}

std::wstring Normal(std::wstring path) {
    std::ranges::replace(path, L'/', L'\\');
    return path;
}

/// The program's file: one with a folder against the caller's current folder, a bare name along PATH. Empty
/// where there is none.
std::wstring Find(const std::string& program) {
    const std::wstring name = Normal(Wide(program));
    std::wstring found(32768, L'\0');
    const bool bare = name.find_first_of(L"\\:") == std::wstring::npos;
    const std::wstring path = Environment(L"PATH");
    const wchar_t* const along = bare ? path.c_str() : nullptr;
    found.resize(
        ::SearchPathW(along, name.c_str(), L".exe", static_cast<DWORD>(found.size()), found.data(), nullptr));
    return found;
}

std::wstring CommandLine(const std::wstring& file, const std::vector<std::string>& arguments) {
    std::wstring line = Quoted(file);
    for (const std::string& argument : arguments) line += L" " + Quoted(Wide(argument));
    return line;
}

/// A job that ends its processes when it is closed.
HANDLE NewJob() {
    const HANDLE job = ::CreateJobObjectW(nullptr, nullptr);
    JOBOBJECT_EXTENDED_LIMIT_INFORMATION limits{};
    limits.BasicLimitInformation.LimitFlags = JOB_OBJECT_LIMIT_KILL_ON_JOB_CLOSE;
    ::SetInformationJobObject(job, JobObjectExtendedLimitInformation, &limits, sizeof limits);
    return job;
}

/// Takes what the pipe holds without waiting.
void Drain(HANDLE pipe, std::string& output) {
    char buffer[4096];
    DWORD waiting = 0;
    while (::PeekNamedPipe(pipe, nullptr, 0, nullptr, &waiting, nullptr) != 0 && waiting > 0) {
        DWORD read = 0;
        if (::ReadFile(pipe, buffer, sizeof buffer, &read, nullptr) == 0) return;
        output.append(buffer, read);
        if (output.size() > 2 * kTail) output.erase(0, output.size() - kTail);
    }
}

/// The last lines, without line ends behind them.
std::string Tail(std::string output) {
    while (!output.empty() && static_cast<unsigned char>(output.back()) <= ' ') output.pop_back();
    if (output.size() > kTail) output.erase(0, output.size() - kTail);
    std::erase(output, '\r');
    return output;
}

struct Child {
    Handle process, job, output;
};

/// 0, or why it could not start.
DWORD Launch(const std::wstring& file, std::wstring commandLine, const std::wstring& folder, Child& child) {
    Handle write, input;
    SECURITY_ATTRIBUTES inherit{sizeof inherit, nullptr, TRUE};
    if (::CreatePipe(child.output.Out(), write.Out(), &inherit, 0) == 0) return ::GetLastError();
    ::SetHandleInformation(child.output.Get(), HANDLE_FLAG_INHERIT, 0);
    *input.Out() = ::CreateFileW(L"NUL", GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, &inherit,
                                 OPEN_EXISTING, 0, nullptr);
    STARTUPINFOW start{};
    start.cb = sizeof start;
    start.dwFlags = STARTF_USESTDHANDLES;
    start.hStdInput = input.Get();
    start.hStdOutput = start.hStdError = write.Get();
    PROCESS_INFORMATION made{};
    if (::CreateProcessW(file.c_str(), commandLine.data(), nullptr, nullptr, TRUE,
                         CREATE_NO_WINDOW | CREATE_SUSPENDED, nullptr, folder.c_str(), &start, &made) == 0)
        return ::GetLastError();
    *child.process.Out() = made.hProcess;
    const Handle thread(made.hThread);
    *child.job.Out() = NewJob();
    ::AssignProcessToJobObject(child.job.Get(), child.process.Get());
    ::ResumeThread(thread.Get());
    return ERROR_SUCCESS;
}

ProcessResult NoSuchProgram() {
    ProcessResult result;
    result.output = "there is no such program";
    return result;
}

}  // namespace

ProcessResult ProcessRunner::Run(const std::string& program, const std::vector<std::string>& arguments,
                                 const std::string& workingFolder, const std::function<bool()>& interrupted) {
    ProcessResult result;
    const std::wstring file = Find(program);
    if (file.empty()) return NoSuchProgram();
    Child child;
    if (const DWORD reason = Launch(file, CommandLine(file, arguments), Normal(Wide(workingFolder)), child)) {
        result.output = SystemText(reason);
        return result;
    }
    result.started = true;
    std::string output;
    while (::WaitForSingleObject(child.process.Get(), kLook) == WAIT_TIMEOUT) {
        Drain(child.output.Get(), output);
        if (interrupted()) ::TerminateProcess(child.process.Get(), kEnded);
    }
    Drain(child.output.Get(), output);
    DWORD code = 0;
    ::GetExitCodeProcess(child.process.Get(), &code);
    result.exitCode = static_cast<int>(code);
    result.output = Tail(std::move(output));
    return result;
}

ProcessResult ProcessRunner::Start(const std::string& program, const std::vector<std::string>& arguments,
                                   std::chrono::milliseconds patience) {
    ProcessResult result;
    const std::wstring file = Find(program);
    if (file.empty()) return NoSuchProgram();
    std::wstring line = CommandLine(file, arguments);
    STARTUPINFOW start{};
    start.cb = sizeof start;
    PROCESS_INFORMATION made{};
    if (::CreateProcessW(file.c_str(), line.data(), nullptr, nullptr, FALSE, DETACHED_PROCESS, nullptr,
                         nullptr, &start, &made) == 0) {
        result.output = SystemText(::GetLastError());
        return result;
    }
    const Handle process(made.hProcess);
    const Handle thread(made.hThread);
    result.started = true;
    if (::WaitForSingleObject(process.Get(), static_cast<DWORD>(patience.count())) == WAIT_TIMEOUT)
        return result;
    DWORD code = 0;
    ::GetExitCodeProcess(process.Get(), &code);
    result.exitCode = static_cast<int>(code);
    return result;
}

}  // namespace orvo::windows
