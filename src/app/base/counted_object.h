// Objects that are handed to OLE.
#pragma once

#include <windows.h>

#include <unknwn.h>

#include <atomic>
#include <memory>

namespace tessary {

// Implements IUnknown for one interface; lives as long as somebody keeps a reference. Its maker has
// the first one.
template <class Interface>
class Counted : public Interface {
  public:
    Counted() = default;
    Counted(const Counted&) = delete;
    Counted& operator=(const Counted&) = delete;
    virtual ~Counted() = default;

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID id, void** object) override {
        if (object == nullptr) return E_POINTER;
        const bool known = IsEqualIID(id, IID_IUnknown) || IsEqualIID(id, __uuidof(Interface));
        *object = known ? static_cast<Interface*>(this) : nullptr;
        if (!known) return E_NOINTERFACE;
        AddRef();
        return S_OK;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return ++references_; }
    ULONG STDMETHODCALLTYPE Release() override {
        const ULONG left = --references_;
        if (left == 0) const std::unique_ptr<Counted> self(this);
        return left;
    }

  private:
    std::atomic<ULONG> references_ = 1;
};

}  // namespace tessary
