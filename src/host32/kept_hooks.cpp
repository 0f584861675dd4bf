#include "host32/kept_hooks.h"

#include <cstdint>
#include <cstring>
#include <iterator>

namespace tessary {
namespace {

bool IsCalledWhereItWasSet(int kind) {
    return kind == WH_KEYBOARD_LL || kind == WH_MOUSE_LL || kind == WH_JOURNALRECORD ||
           kind == WH_JOURNALPLAYBACK;
}

bool IsOurs(DWORD thread) {
    const HANDLE opened = OpenThread(THREAD_QUERY_LIMITED_INFORMATION, FALSE, thread);
    if (opened == nullptr) return false;
    const DWORD process = GetProcessIdOfThread(opened);
    CloseHandle(opened);
    return process == GetCurrentProcessId();
}

DWORD KeptThread(int kind, DWORD thread) {
    const bool stays = IsCalledWhereItWasSet(kind) || (thread != 0 && IsOurs(thread));
    return stays ? thread : GetCurrentThreadId();
}

HHOOK WINAPI SetKeptHookA(int kind, HOOKPROC procedure, HINSTANCE module, DWORD thread) {
    return SetWindowsHookExA(kind, procedure, module, KeptThread(kind, thread));
}

HHOOK WINAPI SetKeptHookW(int kind, HOOKPROC procedure, HINSTANCE module, DWORD thread) {
    return SetWindowsHookExW(kind, procedure, module, KeptThread(kind, thread));
}

FARPROC WINAPI FindEntry(HMODULE module, const char* name);

template <typename Function>
FARPROC AddressOf(Function* function) {
    return reinterpret_cast<FARPROC>(reinterpret_cast<void*>(function));
}

// What stands for a function of the system's; itself when nothing does.
FARPROC InPlaceOf(FARPROC entry) {
    if (entry == AddressOf(SetWindowsHookExA)) return AddressOf(SetKeptHookA);
    if (entry == AddressOf(SetWindowsHookExW)) return AddressOf(SetKeptHookW);
    if (entry == AddressOf(GetProcAddress)) return AddressOf(FindEntry);
    return entry;
}

// Packed libraries find what they import by themselves.
FARPROC WINAPI FindEntry(HMODULE module, const char* name) {
    return InPlaceOf(GetProcAddress(module, name));
}

void Replace(FARPROC& entry) {
    const FARPROC other = InPlaceOf(entry);
    DWORD before = 0;
    if (other == entry || !VirtualProtect(&entry, sizeof(entry), PAGE_READWRITE, &before)) return;
    entry = other;
    VirtualProtect(&entry, sizeof(entry), before, &before);
}

template <typename T>
T* At(HMODULE module, DWORD offset) {
    return reinterpret_cast<T*>(reinterpret_cast<uint8_t*>(module) + offset);
}

}  // namespace

void KeepHooksHere(HMODULE module) {
    const auto* const dos = At<const IMAGE_DOS_HEADER>(module, 0);
    const auto* const headers =
        At<const IMAGE_NT_HEADERS>(module, static_cast<DWORD>(dos->e_lfanew));
    const IMAGE_OPTIONAL_HEADER& optional = headers->OptionalHeader;
    if (optional.Magic != IMAGE_NT_OPTIONAL_HDR_MAGIC ||
        optional.NumberOfRvaAndSizes <= IMAGE_DIRECTORY_ENTRY_IMPORT) {
        return;
    }
    const IMAGE_DATA_DIRECTORY& imports = optional.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT];
    if (imports.VirtualAddress == 0) return;
    // The system has just gone the same way.
    for (auto* library = At<const IMAGE_IMPORT_DESCRIPTOR>(module, imports.VirtualAddress);
         library->Name != 0 && library->FirstThunk != 0; ++library) {
        for (auto* entry = At<FARPROC>(module, library->FirstThunk); *entry != nullptr; ++entry)
            Replace(*entry);
    }
}

}  // namespace tessary
