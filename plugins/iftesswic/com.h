// COM for the time of one call: a plug-in does not know whether its host has started it.
#pragma once

#include <windows.h>

#include <objbase.h>
#include <wrl/client.h>

namespace tessary::wic {

using Microsoft::WRL::ComPtr;

// A call to the system that did not work; caught where a result is made of it.
struct ComFailure {
    HRESULT code;
};

inline void Check(HRESULT code) {
    if (FAILED(code)) throw ComFailure{code};
}

// Takes part in the thread's apartment, or, where it has none, in the one of many threads: one of
// its own would oblige it to handle messages while a decoder is at work. Objects are to be released
// before it ends.
class ComApartment {
  public:
    ComApartment() : code_(CoInitializeEx(nullptr, COINIT_MULTITHREADED)) {
        // A host that chose the other threading model has COM running, which is all that matters;
        // only a successful start must be paired with an end.
        if (code_ != RPC_E_CHANGED_MODE) Check(code_);
    }
    ~ComApartment() {
        if (SUCCEEDED(code_)) CoUninitialize();
    }
    ComApartment(const ComApartment&) = delete;
    ComApartment& operator=(const ComApartment&) = delete;

  private:
    HRESULT code_;
};

}  // namespace tessary::wic
