// The settings windows of plug-ins on screens of high resolution.
#pragma once

#include <windows.h>

namespace tessary {

// For its own life the system enlarges the windows that this thread makes, as it does those of
// programs that count in pixels: plug-ins do. Systems before Windows 10 have it for whole programs
// only; there this does nothing.
class UnawareOfResolution {
  public:
    UnawareOfResolution() {
        for (const INT_PTR context : {kUnawareSharpText, kUnaware}) {
            if (Set() != nullptr && former_ == nullptr)
                former_ = Set()(reinterpret_cast<HANDLE>(context));
        }
    }
    UnawareOfResolution(const UnawareOfResolution&) = delete;
    UnawareOfResolution& operator=(const UnawareOfResolution&) = delete;
    ~UnawareOfResolution() {
        if (former_ != nullptr) Set()(former_);
    }

  private:
    using SetContext = HANDLE(WINAPI*)(HANDLE);

    // Values of DPI_AWARENESS_CONTEXT; the first came later.
    static constexpr INT_PTR kUnawareSharpText = -5;
    static constexpr INT_PTR kUnaware = -1;

    static SetContext Set() {
        static const auto set = reinterpret_cast<SetContext>(reinterpret_cast<void*>(
            GetProcAddress(GetModuleHandleW(L"user32.dll"), "SetThreadDpiAwarenessContext")));
        return set;
    }

    HANDLE former_ = nullptr;
};

}  // namespace tessary
