#include "host/host_process.h"

#include <algorithm>
#include <array>
#include <utility>
#include <vector>

#include "app/base/error.h"
#include "app/base/paths.h"
#include "app/base/text.h"
#include "host/hidden_desktop.h"
#include "host/host_patience.h"
#include "host/hosted_call.h"

namespace tessary {
namespace {

constexpr DWORD kStartLimit = 10000;  // milliseconds; the first start after the system's is slow
constexpr DWORD kEndLimit = 1000;     // that the freeing of plug-ins may take
constexpr DWORD kLastMoment = 300;    // between the end of a process's first thread and its own
constexpr DWORD kBeat = 40;           // between two looks at whether to go on
// In one piece: what memory a host has is looked at, and windows are not to seem hung.
constexpr DWORD kLongestWait = 250;

constexpr ULONGLONG kBetweenLooks = 300;  // at a plug-in's file, in milliseconds

// Exit codes from here on are those of exceptions that nobody has handled.
constexpr DWORD kLeastException = 0x80000000;

// Only these handles go to a child process.
class InheritedHandles {
  public:
    explicit InheritedHandles(std::vector<HANDLE> handles) : handles_(std::move(handles)) {
        SIZE_T size = 0;
        InitializeProcThreadAttributeList(nullptr, 1, 0, &size);
        memory_.resize(size);
        isGood_ = InitializeProcThreadAttributeList(List(), 1, 0, &size) != FALSE;
        isGood_ = isGood_ && UpdateProcThreadAttribute(
                                 List(), 0, PROC_THREAD_ATTRIBUTE_HANDLE_LIST, handles_.data(),
                                 handles_.size() * sizeof(HANDLE), nullptr, nullptr) != FALSE;
    }
    InheritedHandles(const InheritedHandles&) = delete;
    InheritedHandles& operator=(const InheritedHandles&) = delete;
    ~InheritedHandles() {
        if (isGood_) DeleteProcThreadAttributeList(List());
    }

    bool IsGood() const { return isGood_; }
    LPPROC_THREAD_ATTRIBUTE_LIST List() {
        return reinterpret_cast<LPPROC_THREAD_ATTRIBUTE_LIST>(memory_.data());
    }

  private:
    std::vector<HANDLE> handles_;
    std::vector<uint8_t> memory_;
    bool isGood_ = false;
};

// Whether nobody has a file open to write it.
bool IsWritten(const std::wstring& path) {
    return static_cast<bool>(UniqueFile(CreateFileW(ExtendedPath(path).c_str(), GENERIC_READ,
                                                    FILE_SHARE_READ | FILE_SHARE_DELETE, nullptr,
                                                    OPEN_EXISTING, 0, nullptr)));
}

// A handle of this process that a child inherits: to wait for its end, and for nothing else.
UniqueProcess OwnHandle() {
    HANDLE own = nullptr;
    DuplicateHandle(GetCurrentProcess(), GetCurrentProcess(), GetCurrentProcess(), &own,
                    SYNCHRONIZE, TRUE, 0);
    return UniqueProcess(own);
}

// A priority class no higher than that of this process, nor than the usual one; below that for a
// thread that is.
DWORD ModestPriority() {
    const DWORD own = GetPriorityClass(GetCurrentProcess());
    if (own == IDLE_PRIORITY_CLASS || own == BELOW_NORMAL_PRIORITY_CLASS) return own;
    const bool isLow = GetThreadPriority(GetCurrentThread()) < THREAD_PRIORITY_NORMAL;
    return isLow ? BELOW_NORMAL_PRIORITY_CLASS : NORMAL_PRIORITY_CLASS;
}

// A job whose processes end with its last handle, and get no more than so much memory. Null where
// there are none.
UniqueJob EndingJob(uint64_t memory) {
    UniqueJob job(CreateJobObjectW(nullptr, nullptr));
    JOBOBJECT_EXTENDED_LIMIT_INFORMATION limits{};
    limits.BasicLimitInformation.LimitFlags =
        JOB_OBJECT_LIMIT_KILL_ON_JOB_CLOSE | JOB_OBJECT_LIMIT_DIE_ON_UNHANDLED_EXCEPTION |
        JOB_OBJECT_LIMIT_SILENT_BREAKAWAY_OK |  // a browser that a settings window opens stays
        JOB_OBJECT_LIMIT_PRIORITY_CLASS;        // none before the program's windows
    limits.BasicLimitInformation.PriorityClass = ModestPriority();
    if (memory <= SIZE_MAX) {
        limits.BasicLimitInformation.LimitFlags |= JOB_OBJECT_LIMIT_PROCESS_MEMORY;
        limits.ProcessMemoryLimit = static_cast<SIZE_T>(memory);
    }
    if (job) {
        SetInformationJobObject(job.Get(), JobObjectExtendedLimitInformation, &limits,
                                sizeof(limits));
    }
    return job;
}

struct StartedProcess {
    UniqueProcess process;
    UniqueThread thread;
    UniqueJob job;
};

std::optional<StartedProcess> StartWith(const std::wstring& program, const ChannelHandles& handles,
                                        const HostProcess::Kind& kind) {
    InheritedHandles inherited({handles.page, handles.request, handles.answer, handles.program});
    if (!inherited.IsGood()) return std::nullopt;
    STARTUPINFOEXW start{};
    start.StartupInfo.cb = sizeof(start);
    start.lpAttributeList = inherited.List();
    std::wstring desktop = kind.isHidden ? HiddenDesktop::Own().Name() : std::wstring();
    if (!desktop.empty()) start.StartupInfo.lpDesktop = desktop.data();
    std::wstring line = L'"' + program + L"\" " + handles.Arguments();
    PROCESS_INFORMATION made{};
    // Not on its way before it is in the job.
    if (!CreateProcessW(program.c_str(), line.data(), nullptr, nullptr, TRUE,
                        EXTENDED_STARTUPINFO_PRESENT | CREATE_SUSPENDED | CREATE_NO_WINDOW, nullptr,
                        nullptr, &start.StartupInfo, &made)) {
        return std::nullopt;
    }
    StartedProcess started{UniqueProcess(made.hProcess), UniqueThread(made.hThread),
                           EndingJob(kind.memory)};
    // Before Windows 8 there is none in another's job; the host sees by itself when we end.
    if (started.job) AssignProcessToJobObject(started.job.Get(), made.hProcess);
    ResumeThread(made.hThread);
    // They are for this child alone.
    for (const HANDLE handle : {handles.page, handles.request, handles.answer, handles.program})
        SetHandleInformation(handle, HANDLE_FLAG_INHERIT, 0);
    return started;
}

}  // namespace

HostProcess::HostProcess(UniqueProcess process, UniqueThread thread, UniqueJob job,
                         ChannelEnd channel, UniqueEvent request, UniqueEvent answer, HostWait wait,
                         const Kind& kind)
    : process_(std::move(process)),
      thread_(std::move(thread)),
      job_(std::move(job)),
      channel_(std::move(channel)),
      request_(std::move(request)),
      answer_(std::move(answer)),
      wait_(std::move(wait)),
      memory_(process_.Get(), kind.memory),
      kind_(kind) {}

std::unique_ptr<HostProcess> HostProcess::Start(const std::wstring& program, HostWait wait,
                                                Kind kind) {
    if (kind.memory == 0) kind.memory = DefaultMemoryBound();
    SECURITY_ATTRIBUTES inherited{sizeof(inherited), nullptr, TRUE};
    std::optional<Section> page = Section::Make(sizeof(ChannelPage), &inherited);
    UniqueEvent request(CreateEventW(&inherited, FALSE, FALSE, nullptr));
    UniqueEvent answer(CreateEventW(&inherited, TRUE, FALSE, nullptr));
    const UniqueProcess own = OwnHandle();
    if (!page || !request || !answer || !own) return nullptr;
    std::optional<StartedProcess> started =
        StartWith(program, {page->Handle(), request.Get(), answer.Get(), own.Get()}, kind);
    if (!started) return nullptr;
    std::unique_ptr<HostProcess> host(
        new HostProcess(std::move(started->process), std::move(started->thread),
                        std::move(started->job), ChannelEnd(*std::move(page)), std::move(request),
                        std::move(answer), std::move(wait), kind));
    HostReply reply;
    return host->Call({}, kStartLimit, {}, {}, reply) == HostEnd::kAnswered ? std::move(host)
                                                                            : nullptr;
}

HostProcess::~HostProcess() {
    if (isWorn_ || !IsAlive()) {
        End();
        return;
    }
    HostReply reply;
    Trapped([&] { Call({.operation = HostOperation::kEnd}, kEndLimit, {}, {}, reply); });
    if (WaitForSingleObject(process_.Get(), kEndLimit) == WAIT_TIMEOUT) End();
}

bool HostProcess::IsReplaced(const std::wstring& plugin) {
    const auto found = files_.find(ToUpper(plugin));
    const ULONGLONG now = GetTickCount64();
    if (found == files_.end() || now - found->second.at < kBetweenLooks) return false;
    found->second.at = now;
    const std::optional<FileStamp> stamp = StampOf(plugin);
    return stamp && stamp != found->second.stamp && IsWritten(plugin);
}

// Without its first thread it is nobody's host any more, whatever the others do.
bool HostProcess::IsAlive() const {
    return !isEnded_ && WaitForSingleObject(process_.Get(), 0) == WAIT_TIMEOUT &&
           WaitForSingleObject(thread_.Get(), 0) == WAIT_TIMEOUT;
}

void HostProcess::End() {
    isEnded_ = true;
    TerminateProcess(process_.Get(), 0);
    WaitForSingleObject(process_.Get(), kEndLimit);
}

WireSection HostProcess::Lend(const LentBytes::Lent& lent) {
    // It has kept the one that it got last.
    if (lent.id == 0 || lent.id != lent_.id) {
        HANDLE handle = nullptr;
        if (!DuplicateHandle(GetCurrentProcess(), lent.section, process_.Get(), &handle,
                             SECTION_MAP_READ | SECTION_QUERY, FALSE, 0)) {
            return lent_ = {};
        }
        lent_ = {reinterpret_cast<uintptr_t>(handle), lent.size, lent.id};
    }
    return lent_;
}

bool HostProcess::HasSignalled(DWORD milliseconds, bool isUsers, bool& goesOn) const {
    const std::array<HANDLE, 3> handles{answer_.Get(), process_.Get(), thread_.Get()};
    if (wait_) {
        goesOn = wait_(handles, milliseconds, isUsers);
        milliseconds = 0;
    }
    return WaitForMultipleObjects(1, handles.data(), FALSE, 0) == WAIT_OBJECT_0 ||
           (milliseconds != 0 &&
            WaitForMultipleObjects(3, handles.data(), FALSE, milliseconds) == WAIT_OBJECT_0);
}

// The answer stays signalled until then: whoever waits may only look.
void HostProcess::Send() {
    ResetEvent(answer_.Get());
    SetEvent(request_.Get());
}

// Whether a call is still wanted.
bool HostProcess::Goes(const SusieProgress& progress) const {
    return !progress || Trapped(false, [&] { return progress(channel_.Done(), channel_.Total()); });
}

std::optional<HostReply> HostProcess::TakeReply() const {
    const WireSection elsewhere = channel_.Elsewhere();
    if (elsewhere.handle == 0) {
        const auto message = channel_.Message();
        return message ? ReplyOf(*message) : std::nullopt;
    }
    std::optional<HostSections::Lease> section;
    if (Take(elsewhere, section) != HostSections::Opened::kOpen) return std::nullopt;
    // A copy: the host could change it while it is read.
    const std::span<const uint8_t> bytes = section->Bytes();
    return ReplyOf(std::vector<uint8_t>(bytes.begin(), bytes.end()));
}

HostEnd HostProcess::Call(HostRequest request, DWORD limit, const SusieProgress& progress,
                          const CallWatcher& watcher, HostReply& reply) {
    if (!IsAlive()) return Ended(HostEnd::kDied);
    const HostedCall call(Id(), request.plugin);
    request.returned = sections_->TakeReturned();
    if (!request.plugin.empty() && served_.insert(ToUpper(request.plugin)).second) {
        files_[ToUpper(request.plugin)] = {StampOf(request.plugin), GetTickCount64()};
    }
    channel_.PutProgress(0, 0);  // of this call nothing is known
    channel_.SetStartingUp(false);
    if (!channel_.Put(ChannelSignal::kRequest, BytesOf(request))) return HostEnd::kRefused;
    Send();
    HostPatience patience(request.operation, limit, {process_.Get(), thread_.Get()});
    const auto watch = [&](bool isBeat) {
        // The progress is asked each moment where nobody watches.
        if ((!isBeat || !watcher) && !Goes(progress)) patience.Take(CallWish::kStops);
        if (watcher && !patience.IsStopped()) {
            WaitedCall waited = patience.Call();
            waited.plugin = request.plugin;
            waited.done = channel_.Done();
            waited.total = channel_.Total();
            patience.Take(Trapped(CallWish::kStops, [&] { return watcher(waited); }));
        }
    };
    for (;;) {
        switch (patience.Spent()) {
            case HostPatience::End::kNone:
                break;
            case HostPatience::End::kSilent:
                return Ended(HostEnd::kSilent);
            case HostPatience::End::kStopped:
                return Ended(HostEnd::kStopped);
        }
        const DWORD slice = patience.Slice(progress || watcher ? kBeat : kLongestWait);
        const ULONGLONG before = GetTickCount64();
        bool goesOn = true;
        const bool hasSignalled = HasSignalled(slice, limit == INFINITE, goesOn);
        patience.Waited(static_cast<DWORD>(std::min<ULONGLONG>(GetTickCount64() - before, slice)));
        if (!hasSignalled) {
            if (!IsAlive()) return Ended(HostEnd::kDied);
            if (memory_.IsExceeded()) return Ended(HostEnd::kHoarded);
            if (HangsAtStart(request, patience.Idle())) return Ended(HostEnd::kSilent);
            if (kind_.isHidden && HiddenDesktop::Own().HasWindowOf(Id()))
                return Ended(HostEnd::kStopped);
            goesOn ? watch(true) : patience.Take(CallWish::kStops);
            continue;
        }
        switch (channel_.Signal()) {
            case ChannelSignal::kProgress:
                patience.Tells();
                watch(false);
                channel_.PutGoesOn(!patience.IsStopped());
                Send();
                break;
            case ChannelSignal::kReply:
                if (std::optional<HostReply> told = TakeReply()) {
                    reply = *std::move(told);
                    isWorn_ = isWorn_ || reply.isWorn;
                    isLittered_ = isLittered_ || memory_.IsLittered();
                    return HostEnd::kAnswered;
                }
                return Ended(IsAlive() ? HostEnd::kLied : HostEnd::kDied);
            default:
                return Ended(HostEnd::kLied);
        }
    }
}

// Before code of the library's own runs, the system may be waiting for a slow disk, or for a virus
// scanner. One with a window waits for the user.
bool HostProcess::HangsAtStart(const HostRequest& request, DWORD idle) const {
    return request.operation == HostOperation::kLoad && idle >= kind_.starting &&
           channel_.IsStartingUp() && !ShowsWindow(Id());
}

std::optional<PluginEnd> HostProcess::TakeBlame(HostEnd end, const PluginCall& asked) {
    std::optional<PluginCall> call = CulpritOf(channel_.Notes(), asked, served_);
    channel_.Notes().call.Clear();
    channel_.Notes().thread.Clear();
    if (end == HostEnd::kLied && !call) call = asked;  // nobody else has made the answer
    if (!call || end == HostEnd::kStopped || end == HostEnd::kRefused) return std::nullopt;
    DWORD code = 0;
    GetExitCodeProcess(process_.Get(), &code);
    const EndKind died = code >= kLeastException ? EndKind::kCrash : EndKind::kExit;
    const EndKind kind = end == HostEnd::kLied      ? EndKind::kLie
                         : end == HostEnd::kSilent  ? EndKind::kSilence
                         : end == HostEnd::kHoarded ? EndKind::kMemory
                                                    : died;
    return PluginEnd{*std::move(call), kind};
}

HostEnd HostProcess::Ended(HostEnd end) {
    // Its threads go one by one; the last one says how.
    if (end == HostEnd::kDied) WaitForSingleObject(process_.Get(), kLastMoment);
    End();
    return end;
}

}  // namespace tessary
