// Owners of the system's COM objects.
#pragma once

#include <objbase.h>
#include <unknwn.h>

#include <memory>

namespace tessary {

struct ReleaseInterface {
    void operator()(IUnknown* object) const { object->Release(); }
};
template <typename Interface>
using UniqueInterface = std::unique_ptr<Interface, ReleaseInterface>;

// Another side of a COM object; null when it has none of that kind.
template <typename Interface>
UniqueInterface<Interface> Query(IUnknown* object) {
    void* found = nullptr;
    if (FAILED(object->QueryInterface(__uuidof(Interface), &found))) return nullptr;
    return UniqueInterface<Interface>(static_cast<Interface*>(found));
}

// An object of that class in this process; null when the system has none.
template <typename Interface>
UniqueInterface<Interface> Create(const CLSID& kind) {
    void* made = nullptr;
    const HRESULT result =
        CoCreateInstance(kind, nullptr, CLSCTX_INPROC_SERVER, __uuidof(Interface), &made);
    return UniqueInterface<Interface>(FAILED(result) ? nullptr : static_cast<Interface*>(made));
}

// Has COM open on its thread for its own life, as window threads need it.
class ComSession {
  public:
    ComSession()
        : isOpen_(SUCCEEDED(
              CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED | COINIT_DISABLE_OLE1DDE))) {}
    ComSession(const ComSession&) = delete;
    ComSession& operator=(const ComSession&) = delete;
    ~ComSession() {
        if (isOpen_) CoUninitialize();
    }

  private:
    bool isOpen_;
};

}  // namespace tessary
