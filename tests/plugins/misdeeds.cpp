#include "tests/plugins/misdeeds.h"

#include <csetjmp>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <iterator>

#include "tests/plugins/function.h"

namespace tessary::test {
namespace {

struct Frame {
    Frame* outer;
    EXCEPTION_DISPOSITION(__cdecl* handler)(EXCEPTION_RECORD*, Frame*, CONTEXT*, void*);
    void (*cleanUp)();
    jmp_buf resume;
};

Frame* Chain() {
    Frame* first;
    asm volatile("movl %%fs:0, %0" : "=r"(first));
    return first;
}

void SetChain(const void* first) {
    asm volatile("movl %0, %%fs:0" : : "r"(first) : "memory");
}

EXCEPTION_DISPOSITION __cdecl Handle(EXCEPTION_RECORD* record, Frame* frame, CONTEXT*,
                                     void*) asm("TestHandle");

// A load configuration with a list of the handlers, in which there is but one. A test finds it by
// the mark, and puts it into the file's header.
asm(R"(
    .section .rdata, "dr"
    .balign 4
    .long 72, 0x5AFE5E48
    .space 56
    .long 1f, 1
1:  .rva TestHandle
    .text
)");

EXCEPTION_DISPOSITION __cdecl Handle(EXCEPTION_RECORD* record, Frame* frame, CONTEXT*, void*) {
    if (record->ExceptionFlags & EXCEPTION_UNWINDING) return ExceptionContinueSearch;
    std::longjmp(frame->resume, 1);
}

void* placeOutside[5];

EXCEPTION_DISPOSITION __cdecl JumpOut(EXCEPTION_RECORD* record, Frame* frame, CONTEXT*, void*) {
    if (!(record->ExceptionFlags & EXCEPTION_UNWINDING)) return ExceptionContinueSearch;
    SetChain(frame->outer);
    __builtin_longjmp(placeOutside, 1);  // the other one would unwind once more
}

EXCEPTION_DISPOSITION __cdecl UseMuchStack(EXCEPTION_RECORD*, Frame*, CONTEXT*, void*) {
    volatile char memory[16 * 1024];
    for (volatile char& each : memory)
        each = 0;
    return ExceptionContinueSearch;
}

EXCEPTION_DISPOSITION __cdecl CleanUp(EXCEPTION_RECORD* record, Frame* frame, CONTEXT*, void*) {
    if (record->ExceptionFlags & EXCEPTION_UNWINDING) frame->cleanUp();
    return ExceptionContinueSearch;
}

int Recurse(int depth) {
    volatile char frame[512] = {};
    return frame[depth % 512] + (depth < 0 ? 0 : Recurse(depth + 1)) + frame[7];
}

void Raise(DWORD code, DWORD flags, std::initializer_list<ULONG_PTR> arguments) {
    RaiseException(code, flags, static_cast<DWORD>(arguments.size()), std::data(arguments));
}

void DivideByZero(uint16_t controlWord) {
    asm volatile("fninit; fldcw %0; fld1; fldz; fdivrp; fwait; fstp %%st(0)" : : "m"(controlWord));
}

void DivideByZeroSse(uint32_t settings) {
    asm volatile(
        "ldmxcsr %0; xorps %%xmm0, %%xmm0; movl $0x3F800000, %%eax; movd %%eax, %%xmm1;"
        "divss %%xmm0, %%xmm1"
        :
        : "m"(settings)
        : "eax", "xmm0", "xmm1");
}

// An overrun of a local buffer: its own return address and exception record, and then the callers'.
__attribute__((noinline)) void SmashStack() {
    asm volatile(
        "pushl $0; pushl %%fs:0; movl %%esp, %%fs:0;"
        "movl %%esp, %%edi; movl $0x41414141, %%eax; movl $500, %%ecx; cld; rep stosl;"
        "addl $64, %%esp; ret"
        :
        :
        : "eax", "ecx", "edi", "memory");
}

BOOL CALLBACK Disable(HWND window, LPARAM) {
    EnableWindow(window, FALSE);
    return TRUE;
}

void OpenModalWindow() {
    EnumThreadWindows(GetCurrentThreadId(), Disable, 0);
    CreateWindowW(L"STATIC", L"Test plug-in window", WS_POPUP | WS_VISIBLE, 0, 0, 50, 50, nullptr,
                  nullptr, ThisModule(), nullptr);
}

LRESULT CALLBACK ModelessProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_DESTROY) PostQuitMessage(0);
    return DefWindowProcW(window, message, wParam, lParam);
}

void OpenModelessWindow(DWORD style) {
    OpenWindowOfOurs(L"Test plug-in modeless window", ModelessProcedure, style);
}

DWORD WINAPI WorkForAWhile(void*) {
    Sleep(500);
    return 0;
}

// As an overrun of a block does.
void DamageHeap() {
    const HANDLE heap = HeapCreate(0, 0, 0);
    auto* const block = static_cast<char*>(HeapAlloc(heap, 0, 40));
    HeapAlloc(heap, 0, 40);
    std::memset(block + 40, 'A', 64);
}

// Whoever allocates next crashes: overruns a block as far as it goes.
void RuinHeap(HANDLE heap) {
    auto* const block = static_cast<char*>(HeapAlloc(heap, 0, 4000));
    MEMORY_BASIC_INFORMATION region{};
    if (!block || !VirtualQuery(block, &region, sizeof region)) return;
    std::memset(block, 'A', static_cast<char*>(region.BaseAddress) + region.RegionSize - block);
}

void LockHeap(HANDLE heap) {
    HeapLock(heap);
}

// All memory that this process shares with others.
void ScribbleOverShared() {
    MEMORY_BASIC_INFORMATION region{};
    for (char* at = nullptr; VirtualQuery(at, &region, sizeof region);
         at = static_cast<char*>(region.BaseAddress) + region.RegionSize) {
        if (region.Type == MEM_MAPPED && region.State == MEM_COMMIT &&
            region.Protect == PAGE_READWRITE) {
            std::memset(region.BaseAddress, 0xEE, region.RegionSize);
        }
    }
}

// Takes all memory that it gets, or waits for ever where there is more than a plug-in should have.
void Hoard() {
    constexpr size_t kPiece = 16 << 20;
    for (int i = 0; i < 64; ++i) {
        void* const piece = VirtualAlloc(nullptr, kPiece, MEM_COMMIT, PAGE_READWRITE);
        if (piece == nullptr) return;
        std::memset(piece, 1, kPiece);
    }
    Sleep(INFINITE);
}

void ForEachHeap(void (*act)(HANDLE heap)) {
    HANDLE heaps[64];
    const DWORD count = GetProcessHeaps(std::size(heaps), heaps);
    for (DWORD i = 0; i < count && i < std::size(heaps); ++i)
        act(heaps[i]);
}

HMODULE ModuleAt(const void* address) {
    HMODULE module = nullptr;
    GetModuleHandleExW(
        GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
        static_cast<const wchar_t*>(address), &module);
    return module;
}

// That of the host's guard.
Frame* HostsFrame() {
    const HMODULE host = GetModuleHandleW(L"susiectl.dll");
    Frame* frame = Chain();
    while (ModuleAt(reinterpret_cast<const void*>(frame->handler)) != host)
        frame = frame->outer;
    return frame;
}

constexpr size_t kJumpSize = 5;
constexpr uint16_t kUnmaskedControlWord = 0x0360;
constexpr uint32_t kUnmaskedMxcsr = 0x0100;
constexpr uint32_t kDefaultMxcsr = 0x1F80;

}  // namespace

HWND OpenWindowOfOurs(const wchar_t* name, WNDPROC procedure, DWORD style) {
    WNDCLASSW windowClass{};
    windowClass.lpfnWndProc = procedure;
    windowClass.hInstance = ThisModule();
    windowClass.lpszClassName = name;
    RegisterClassW(&windowClass);
    return CreateWindowW(name, name, WS_POPUP | style, 0, 0, 50, 50, nullptr, nullptr, ThisModule(),
                         nullptr);
}

HMODULE ThisModule() {
    return ModuleAt(reinterpret_cast<const void*>(&Disable));
}

void Crash(const std::string& kind) {
    CrashInWindow(kind);
    if (kind == "av") asm volatile("movl 16, %%eax" : : : "eax");
    if (kind == "av-write") asm volatile("movl $1, 16" : : : "memory");
    if (kind == "av-jump") asm volatile("xorl %%eax, %%eax; call *%%eax" : : : "eax", "memory");
    if (kind == "div-zero") asm volatile("xorl %%ecx, %%ecx; divl %%ecx" : : : "eax", "ecx", "edx");
    if (kind == "div-overflow")
        asm volatile("movl $0x80000000, %%eax; cdq; movl $-1, %%ecx; idivl %%ecx"
                     :
                     :
                     : "eax", "ecx", "edx");
    if (kind == "fpu") DivideByZero(kUnmaskedControlWord);
    if (kind == "sse") DivideByZeroSse(kUnmaskedMxcsr);
    if (kind == "illegal") asm volatile("ud2");
    if (kind == "privileged") asm volatile("hlt");
    if (kind == "int3") asm volatile("int3");
    if (kind == "stack-overflow") Recurse(0);
    if (kind == "cpp") Raise(0xE06D7363, EXCEPTION_NONCONTINUABLE, {0x19930520, 0, 0});
    if (kind == "delphi") Raise(0x0EEDFADE, EXCEPTION_NONCONTINUABLE, {0, 0, 0, 0, 0, 0, 0});
    if (kind == "raise") Raise(0xE0001234, 0, {});
    if (kind == "raise-final") Raise(0xC0000025, EXCEPTION_NONCONTINUABLE, {});
    if (kind == "smash") SmashStack();
    if (kind == "wild-chain" || kind == "lost-chain") {
        SetChain(reinterpret_cast<void*>(kind == "lost-chain" ? ~0U : 0x41414140U));
        Crash("av");
    }
    if (kind == "bare-chain" || kind == "cut-chain") {
        if (kind == "bare-chain") SetChain(HostsFrame());
        if (kind == "cut-chain") HostsFrame()->outer = reinterpret_cast<Frame*>(~0U);
        Crash("av");
    }
    static const char text[] = "worker";
    if (kind == "name-thread")
        Raise(0x406D1388, 0, {0x1000, reinterpret_cast<ULONG_PTR>(text), ~0UL, 0});
    if (kind == "debug-print")
        Raise(0x40010006, 0, {sizeof text, reinterpret_cast<ULONG_PTR>(text)});
    if (kind == "heap-damage" || kind == "heap-ruin") {
        kind == "heap-ruin" ? ForEachHeap(RuinHeap) : DamageHeap();
        Crash("av");
    }
    if (kind == "exit") ExitProcess(3);
    if (kind == "exit-well") ExitProcess(0);
    if (kind == "scribble") ScribbleOverShared();
    if (kind == "scribble" || kind == "terminate") TerminateProcess(GetCurrentProcess(), 3);
}

LRESULT CALLBACK LateProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_TIMER) wParam == 1 ? ExitProcess(0) : Sleep(INFINITE);
    return DefWindowProcW(window, message, wParam, lParam);
}

void MakeDirty(const std::string& state) {
    if (state == "fpu-unmasked") asm volatile("fldcw %0" : : "m"(kUnmaskedControlWord));
    const uint16_t singlePrecision = 0x007F;
    if (state == "fpu-single") asm volatile("fldcw %0" : : "m"(singlePrecision));
    if (state == "fpu-full") asm volatile("fninit; fld1; fld1; fld1; fld1; fld1; fld1; fld1; fld1");
    if (state == "sse-unmasked") asm volatile("ldmxcsr %0" : : "m"(kUnmaskedMxcsr));
    const uint32_t roundUp = kDefaultMxcsr | 0x4000;
    if (state == "sse-rounding") asm volatile("ldmxcsr %0" : : "m"(roundUp));
    if (state == "direction") asm volatile("std");
    wchar_t folder[MAX_PATH];
    if (state == "folder" && GetTempPathW(MAX_PATH, folder)) SetCurrentDirectoryW(folder);
    if (state == "error-mode") {
        SetErrorMode(SEM_NOGPFAULTERRORBOX);
        SetThreadErrorMode(0, nullptr);
    }
    if (state == "window") OpenModalWindow();
    if (state == "question")
        MessageBoxW(nullptr, L"Go on?", L"Test plug-in question", MB_YESNO | MB_ICONQUESTION);
    if (state == "modeless") OpenModelessWindow(WS_VISIBLE);
    if (state == "hidden") OpenModelessWindow(0);
    if (state == "thread")
        CloseHandle(CreateThread(nullptr, 0, WorkForAWhile, nullptr, 0, nullptr));
    if (state == "quit") PostQuitMessage(9);
    if (state == "slow") Sleep(50);
    if (state == "late-exit" || state == "late-sleep") {
        SetTimer(OpenWindowOfOurs(L"Test plug-in late window", LateProcedure, 0),
                 state == "late-exit" ? 1 : 2, 10, nullptr);
    }
    if (state == "hoard") Hoard();
    if (state == "leak") std::memset(std::malloc(64 << 20), 1, 64 << 20);
    if (state == "sleep") Sleep(INFINITE);
    while (state == "loop")
        asm volatile("");
    if (state == "heap-lock") ForEachHeap(LockHeap);
    ULONG_PTR cookie = 0;
    if (state == "activation-context") ActivateActCtx(nullptr, &cookie);
    if (state == "exception-chain") SetChain(reinterpret_cast<void*>(0x41414140));
    ChangeSystem(state);
}

namespace {

void CrashIn(decltype(&Handle) handler, const std::string& kind) {
    Frame frame{Chain(), handler, nullptr, {}};
    SetChain(&frame);
    if (setjmp(frame.resume) == 0) Crash(kind);
    SetChain(frame.outer);
}

// As packed programs have it: the handler is code on a data page.
void CrashAndHandleInData(const std::string& kind) {
    static const auto handler = static_cast<uint8_t*>(
        VirtualAlloc(nullptr, kJumpSize, MEM_COMMIT | MEM_RESERVE, PAGE_READWRITE));
    handler[0] = 0xE9;  // jmp
    const auto distance =
        reinterpret_cast<uintptr_t>(&Handle) - reinterpret_cast<uintptr_t>(handler + kJumpSize);
    std::memcpy(handler + 1, &distance, sizeof distance);
    CrashIn(reinterpret_cast<decltype(&Handle)>(handler), kind);
}

void CrashAndJumpOut(const std::string& kind) {
    Frame frame{Chain(), JumpOut, nullptr, {}};
    SetChain(&frame);
    if (__builtin_setjmp(placeOutside) == 0) Crash(kind);
}

void CountCleanUp() {
    ++CallCount("finally");
}

void CrashInCleanUp() {
    CountCleanUp();
    Crash("av");
}

// Inside two frames whose clean-up code calls these.
void CrashWithCleanUp(const std::string& kind, void (*inner)(), void (*outer)()) {
    Frame frames[2]{{&frames[1], CleanUp, inner, {}}, {Chain(), CleanUp, outer, {}}};
    SetChain(&frames[0]);
    Crash(kind);
    SetChain(frames[1].outer);
}

struct Misdeed {
    const char* verb;
    void (*act)(const std::string& kind);
};
constexpr Misdeed kMisdeeds[] = {
    {"early", MakeDirty},
    {"crash", Crash},
    {"handled", [](auto& kind) { CrashIn(Handle, kind); }},
    {"handled-in-data", CrashAndHandleInData},
    {"hungry", [](auto& kind) { CrashIn(UseMuchStack, kind); }},
    {"jumping-finally", CrashAndJumpOut},
    {"finally", [](auto& kind) { CrashWithCleanUp(kind, CountCleanUp, CountCleanUp); }},
    {"bad-finally", [](auto& kind) { CrashWithCleanUp(kind, CrashInCleanUp, CountCleanUp); }},
};

}  // namespace

void Misbehave(const Script& script, const std::string& name) {
    for (const auto& [verb, act] : kMisdeeds)
        for (const auto& kind : script.Kinds(verb, name))
            act(kind);
}

[[noreturn]] void ReturnWithoutRegisters(int answer, void* frame, int argumentCount) {
    asm volatile(
        "leal -4(%1), %%esp; popl %%edi; leal (%%esp, %2, 4), %%esp; movl %%edi, -4(%%esp);"
        "movl $0xBAD, %%ebx; movl %%ebx, %%esi; movl %%ebx, %%edi; movl %%ebx, %%ebp;"
        "jmp *-4(%%esp)"
        :
        : "a"(answer), "c"(frame), "d"(argumentCount)
        : "memory");
    __builtin_unreachable();
}

}  // namespace tessary::test
