// Programs that a test starts.
#pragma once

#include <windows.h>

#include <map>
#include <string>

namespace tessary::test {

// How a program is started.
struct ChildStart {
    std::map<std::wstring, std::wstring> environment{};  // for it alone, and unset behind it
    std::wstring folder{};              // its current one; that of this process when empty
    HANDLE output = nullptr;            // for both of its streams; can be inherited
    WORD showCommand = SW_SHOWDEFAULT;  // as a shortcut says it
    DWORD flags = 0;                    // CREATE_…
};

class ChildProcess {
  public:
    explicit ChildProcess(std::wstring commandLine, const ChildStart& how = {}) {
        STARTUPINFOW startup{};
        startup.cb = sizeof(startup);
        if (how.showCommand != SW_SHOWDEFAULT) startup.dwFlags |= STARTF_USESHOWWINDOW;
        if (how.output != nullptr) startup.dwFlags |= STARTF_USESTDHANDLES;
        startup.wShowWindow = how.showCommand;
        startup.hStdOutput = startup.hStdError = how.output;
        for (const auto& [name, value] : how.environment)
            SetEnvironmentVariableW(name.c_str(), value.c_str());
        hasStarted_ =
            CreateProcessW(nullptr, commandLine.data(), nullptr, nullptr, how.output != nullptr,
                           how.flags, nullptr, how.folder.empty() ? nullptr : how.folder.c_str(),
                           &startup, &process_) != 0;
        for (const auto& variable : how.environment)
            SetEnvironmentVariableW(variable.first.c_str(), nullptr);
    }
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;
    // Ends it if it still runs.
    ~ChildProcess() {
        if (!hasStarted_) return;
        if (IsRunning()) End(99);
        CloseHandle(process_.hThread);
        CloseHandle(process_.hProcess);
    }

    // Starts the running test program once more, for the tests alone that `filter` names; disabled
    // ones count, too.
    static ChildProcess OfThisProgram(const std::wstring& filter, const ChildStart& how = {}) {
        wchar_t program[MAX_PATH];
        GetModuleFileNameW(nullptr, program, MAX_PATH);
        return ChildProcess(L'"' + std::wstring(program) +
                                L"\" --gtest_also_run_disabled_tests --gtest_filter=" + filter,
                            how);
    }

    bool HasStarted() const { return hasStarted_; }
    bool IsRunning() const { return WaitForSingleObject(process_.hProcess, 0) == WAIT_TIMEOUT; }
    HANDLE Handle() const { return process_.hProcess; }
    DWORD Id() const { return process_.dwProcessId; }

    // Waits for its end, so many milliseconds at most, and answers its exit code; STILL_ACTIVE when
    // it does not end or has not been started.
    DWORD ExitCode(DWORD longest = 60'000) const {
        DWORD code = STILL_ACTIVE;
        WaitForSingleObject(process_.hProcess, longest);
        GetExitCodeProcess(process_.hProcess, &code);
        return code;
    }

    // Ends it in the middle of its work, and waits for that.
    void End(UINT exitCode) const {
        TerminateProcess(process_.hProcess, exitCode);
        WaitForSingleObject(process_.hProcess, INFINITE);
    }

  private:
    PROCESS_INFORMATION process_{};
    bool hasStarted_ = false;
};

}  // namespace tessary::test
