#include "convert_cli/worker_process.h"

#include <windows.h>

#include <cstdint>
#include <cwchar>
#include <memory>
#include <mutex>
#include <string>

#include "app/base/handles.h"
#include "app/base/modGetFolder.h"
#include "plugin/call_log.h"

namespace tessary {
namespace {

// Kernel objects without a type of their own are closed as mutexes are.
using UniqueObject = UniqueHandle<handle_traits::Mutex>;

// Tells the worker which inherited handle is the one of the section that takes the verdict.
constexpr wchar_t kVariable[] = L"TESSARY_CONVERT_VERDICT";

struct Verdict {
    LONG isTold;
    LONG status;
    uint64_t overseer;  // the worker's handle of the process that has started it
    uint64_t notes;     // its handle of the file for what it notes; 0: there is none
};

struct Unmap {
    void operator()(Verdict* verdict) const { UnmapViewOfFile(verdict); }
};
using MappedVerdict = std::unique_ptr<Verdict, Unmap>;

MappedVerdict Map(HANDLE section) {
    return MappedVerdict(
        static_cast<Verdict*>(MapViewOfFile(section, FILE_MAP_WRITE, 0, 0, sizeof(Verdict))));
}

// Whoever has ended the overseer wants the run to end. The plug-in that is being called then has
// done nothing wrong.
void CALLBACK OnOverseerEnd(void*, BOOLEAN) {
    ExcuseLastCall();
    TerminateProcess(GetCurrentProcess(), static_cast<UINT>(STATUS_CONTROL_C_EXIT));
}

void EndWith(HANDLE overseer) {
    HANDLE wait = nullptr;
    RegisterWaitForSingleObject(&wait, overseer, OnOverseerEnd, nullptr, INFINITE,
                                WT_EXECUTEONLYONCE);
}

HANDLE HandleOf(uint64_t number) {
    return reinterpret_cast<HANDLE>(static_cast<uintptr_t>(number));
}

// A handle of this process that the worker inherits.
UniqueObject OwnHandle() {
    HANDLE own = nullptr;
    DuplicateHandle(GetCurrentProcess(), GetCurrentProcess(), GetCurrentProcess(), &own,
                    SYNCHRONIZE, TRUE, 0);
    return UniqueObject(own);
}

// A file that goes with its last handle, and which the worker inherits.
UniqueFile NotesFile(SECURITY_ATTRIBUTES& inherited) {
    wchar_t name[MAX_PATH]{};
    if (GetTempFileNameW(TemporaryFolder().c_str(), L"tsy", 0, name) == 0) return {};
    constexpr DWORD kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
    return UniqueFile(CreateFileW(name, GENERIC_READ | GENERIC_WRITE, kShareAll, &inherited,
                                  CREATE_ALWAYS,
                                  FILE_ATTRIBUTE_TEMPORARY | FILE_FLAG_DELETE_ON_CLOSE, nullptr));
}

std::string ContentOf(const UniqueFile& file) {
    LARGE_INTEGER size{};
    DWORD read = 0;
    if (!file || !GetFileSizeEx(file.Get(), &size)) return {};
    std::string content(static_cast<size_t>(size.QuadPart), '\0');
    SetFilePointer(file.Get(), 0, nullptr, FILE_BEGIN);
    ReadFile(file.Get(), content.data(), static_cast<DWORD>(content.size()), &read, nullptr);
    content.resize(read);
    return content;
}

// The section that this process was given; null: it was given none.
Verdict* Given() {
    static const MappedVerdict given = [] {
        wchar_t number[32]{};
        const DWORD length = GetEnvironmentVariableW(kVariable, number, 32);
        // Not for what plug-ins start.
        SetEnvironmentVariableW(kVariable, nullptr);
        if (length == 0 || length >= 32) return MappedVerdict();
        MappedVerdict mapped = Map(HandleOf(std::wcstoull(number, nullptr, 10)));
        if (mapped) {
            EndWith(HandleOf(mapped->overseer));
            SetHandleInformation(HandleOf(mapped->notes), HANDLE_FLAG_INHERIT, 0);
        }
        return mapped;
    }();
    return given.get();
}

// The worker answers it; when the console is closed, this process stays as long as it may.
BOOL WINAPI LeaveToWorker(DWORD event) {
    constexpr DWORD kGraceMilliseconds = 20000;
    if (event != CTRL_C_EVENT && event != CTRL_BREAK_EVENT) Sleep(kGraceMilliseconds);
    return TRUE;
}

// When the session ends, the system comes to the worker first, and here when that has ended: it
// goes by this number, and all others have 0x280.
void EndBehindWorker() {
    constexpr DWORD kLevel = 0x27F;
    SetProcessShutdownParameters(kLevel, 0);
}

// A plug-in that hangs when the process ends does not hold up what waits for us.
void WaitForEnd(HANDLE process, const Verdict& verdict) {
    constexpr DWORD kLook = 500;
    constexpr int kMostLooks = 20;
    int looks = 0;
    while (WaitForSingleObject(process, kLook) == WAIT_TIMEOUT) {
        if (InterlockedCompareExchange(const_cast<LONG*>(&verdict.isTold), 0, 0) == 0) continue;
        if (++looks > kMostLooks) TerminateProcess(process, 0);
    }
}

}  // namespace

bool IsWorker() {
    return Given() != nullptr;
}

void TellVerdict(int status) {
    Verdict* const verdict = Given();
    if (verdict == nullptr) return;
    verdict->status = status;
    InterlockedExchange(&verdict->isTold, 1);
}

void NoteForOverseer(const std::string& bytes) {
    static std::mutex oneAtATime;
    const Verdict* const verdict = Given();
    if (verdict == nullptr || verdict->notes == 0) return;
    const std::lock_guard lock(oneAtATime);
    DWORD written = 0;
    WriteFile(HandleOf(verdict->notes), bytes.data(), static_cast<DWORD>(bytes.size()), &written,
              nullptr);
}

std::optional<WorkerEnd> RunWorker() {
    SECURITY_ATTRIBUTES inherited{sizeof(inherited), nullptr, TRUE};
    const UniqueObject section(CreateFileMappingW(INVALID_HANDLE_VALUE, &inherited, PAGE_READWRITE,
                                                  0, sizeof(Verdict), nullptr));
    const MappedVerdict verdict = section ? Map(section.Get()) : nullptr;
    wchar_t program[MAX_PATH * 4]{};
    const DWORD length = GetModuleFileNameW(nullptr, program, MAX_PATH * 4);
    if (!verdict || length == 0 || length == MAX_PATH * 4) return std::nullopt;
    const auto number = reinterpret_cast<uintptr_t>(section.Get());
    SetEnvironmentVariableW(kVariable, std::to_wstring(number).c_str());
    SetConsoleCtrlHandler(LeaveToWorker, TRUE);
    const UniqueObject own = OwnHandle();
    verdict->overseer = reinterpret_cast<uintptr_t>(own.Get());
    const UniqueFile notes = NotesFile(inherited);
    if (notes) verdict->notes = reinterpret_cast<uintptr_t>(notes.Get());
    STARTUPINFOW start{};
    start.cb = sizeof(start);
    // Without a console here, the worker would open one for everybody to see.
    const bool hasConsole = GetConsoleOutputCP() != 0;
    if (!hasConsole) {
        start.dwFlags = STARTF_USESTDHANDLES;
        start.hStdInput = GetStdHandle(STD_INPUT_HANDLE);
        start.hStdOutput = GetStdHandle(STD_OUTPUT_HANDLE);
        start.hStdError = GetStdHandle(STD_ERROR_HANDLE);
    }
    PROCESS_INFORMATION process{};
    std::wstring command = GetCommandLineW();
    const BOOL isStarted =
        CreateProcessW(program, command.data(), nullptr, nullptr, TRUE,
                       hasConsole ? 0 : DETACHED_PROCESS, nullptr, nullptr, &start, &process);
    SetEnvironmentVariableW(kVariable, nullptr);
    std::optional<WorkerEnd> end;
    if (isStarted) {
        const UniqueObject worker(process.hProcess);
        CloseHandle(process.hThread);
        EndBehindWorker();
        WaitForEnd(worker.Get(), *verdict);
        end.emplace();
        GetExitCodeProcess(worker.Get(), &end->exitCode);
        if (verdict->isTold != 0) {
            end->verdict = verdict->status;
        } else {
            end->notes = ContentOf(notes);
        }
    }
    SetConsoleCtrlHandler(LeaveToWorker, FALSE);
    return end;
}

}  // namespace tessary
