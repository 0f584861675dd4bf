// Owners of Win32 handles: one template, one alias per kind of handle.
#pragma once

#include <windows.h>

#include <utility>

namespace tessary {

// Owns one handle and closes it at the end of its life. `Traits` names the handle type, the value
// that means "none" and the closing call.
template <typename Traits>
class UniqueHandle {
  public:
    using Handle = typename Traits::Handle;

    UniqueHandle() = default;
    explicit UniqueHandle(Handle handle) : handle_(handle) {}
    UniqueHandle(UniqueHandle&& other) noexcept : handle_(other.Release()) {}
    UniqueHandle& operator=(UniqueHandle&& other) noexcept {
        if (this != &other) Reset(other.Release());
        return *this;
    }
    UniqueHandle(const UniqueHandle&) = delete;
    UniqueHandle& operator=(const UniqueHandle&) = delete;
    ~UniqueHandle() { Reset(); }

    explicit operator bool() const { return handle_ != Traits::None(); }
    Handle Get() const { return handle_; }

    // Gives the handle up: the caller owns it from here on.
    Handle Release() { return std::exchange(handle_, Traits::None()); }

    // Closes what is owned and takes `handle` instead.
    void Reset(Handle handle = Traits::None()) {
        const Handle old = std::exchange(handle_, handle);
        if (old != Traits::None()) Traits::Close(old);
    }

    // For calls that hand a new handle out through a pointer; what was owned is closed first.
    Handle* Receive() {
        Reset();
        return &handle_;
    }

  private:
    Handle handle_ = Traits::None();
};

namespace handle_traits {

template <typename T>
struct NullIsNone {
    using Handle = T;
    static T None() { return nullptr; }
};

struct File {
    using Handle = HANDLE;
    static HANDLE None() { return INVALID_HANDLE_VALUE; }
    static void Close(HANDLE handle) { CloseHandle(handle); }
};
struct Find {
    using Handle = HANDLE;
    static HANDLE None() { return INVALID_HANDLE_VALUE; }
    static void Close(HANDLE handle) { FindClose(handle); }
};
struct Mutex : NullIsNone<HANDLE> {
    static void Close(HANDLE mutex) { CloseHandle(mutex); }
};
struct Process : NullIsNone<HANDLE> {
    static void Close(HANDLE process) { CloseHandle(process); }
};
struct Module : NullIsNone<HMODULE> {
    static void Close(HMODULE module) { FreeLibrary(module); }
};
struct Key : NullIsNone<HKEY> {
    static void Close(HKEY key) { RegCloseKey(key); }
};
struct Global : NullIsNone<HGLOBAL> {
    static void Close(HGLOBAL block) { GlobalFree(block); }
};
struct Menu : NullIsNone<HMENU> {
    static void Close(HMENU menu) { DestroyMenu(menu); }
};
struct Bitmap : NullIsNone<HBITMAP> {
    static void Close(HBITMAP bitmap) { DeleteObject(bitmap); }
};
struct Font : NullIsNone<HFONT> {
    static void Close(HFONT font) { DeleteObject(font); }
};
struct Brush : NullIsNone<HBRUSH> {
    static void Close(HBRUSH brush) { DeleteObject(brush); }
};
struct Pen : NullIsNone<HPEN> {
    static void Close(HPEN pen) { DeleteObject(pen); }
};
struct MemoryDc : NullIsNone<HDC> {
    static void Close(HDC context) { DeleteDC(context); }
};
struct ScreenDc : NullIsNone<HDC> {
    static void Close(HDC context) { ReleaseDC(nullptr, context); }
};

}  // namespace handle_traits

using UniqueFile = UniqueHandle<handle_traits::File>;
using UniqueFind = UniqueHandle<handle_traits::Find>;
using UniqueMutex = UniqueHandle<handle_traits::Mutex>;
using UniqueProcess = UniqueHandle<handle_traits::Process>;
using UniqueModule = UniqueHandle<handle_traits::Module>;
using UniqueKey = UniqueHandle<handle_traits::Key>;
using UniqueGlobal = UniqueHandle<handle_traits::Global>;  // a block of GlobalAlloc
using UniqueMenu = UniqueHandle<handle_traits::Menu>;
using UniqueBitmap = UniqueHandle<handle_traits::Bitmap>;
using UniqueFont = UniqueHandle<handle_traits::Font>;
using UniqueBrush = UniqueHandle<handle_traits::Brush>;
using UniquePen = UniqueHandle<handle_traits::Pen>;
using UniqueMemoryDc = UniqueHandle<handle_traits::MemoryDc>;  // from CreateCompatibleDC
using UniqueScreenDc = UniqueHandle<handle_traits::ScreenDc>;  // from GetDC(nullptr)

}  // namespace tessary
