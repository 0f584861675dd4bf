#include "plugins/iftesswic/source_stream.h"

#include <algorithm>
#include <atomic>
#include <limits>

namespace tessary::wic {
namespace {

class SourceStream final : public IStream {
  public:
    explicit SourceStream(dib::ByteSource& source) : source_(source) {}

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID id, void** object) override {
        if (object == nullptr) return E_POINTER;
        *object = nullptr;
        if (!IsEqualIID(id, IID_IUnknown) && !IsEqualIID(id, IID_ISequentialStream) &&
            !IsEqualIID(id, IID_IStream)) {
            return E_NOINTERFACE;
        }
        AddRef();
        *object = static_cast<IStream*>(this);
        return S_OK;
    }

    ULONG STDMETHODCALLTYPE AddRef() override { return ++references_; }

    ULONG STDMETHODCALLTYPE Release() override {
        const ULONG left = --references_;
        if (left == 0) delete this;
        return left;
    }

    HRESULT STDMETHODCALLTYPE Read(void* out, ULONG wanted, ULONG* read) override {
        if (out == nullptr) return STG_E_INVALIDPOINTER;
        const auto count = source_.ReadAt(position_, {static_cast<uint8_t*>(out), wanted});
        if (read != nullptr) *read = static_cast<ULONG>(count.value_or(0));
        if (!count) return STG_E_READFAULT;
        position_ += *count;
        return *count == wanted ? S_OK : S_FALSE;
    }

    HRESULT STDMETHODCALLTYPE Seek(LARGE_INTEGER move, DWORD origin,
                                   ULARGE_INTEGER* position) override {
        uint64_t base = 0;
        if (origin == STREAM_SEEK_CUR) {
            base = position_;
        } else if (origin == STREAM_SEEK_END) {
            base = source_.Size();
        } else if (origin != STREAM_SEEK_SET) {
            return STG_E_INVALIDFUNCTION;
        }
        const uint64_t target = base + static_cast<uint64_t>(move.QuadPart);
        // Both a wrap below 0 and one beyond the largest file end up above this.
        if (target > static_cast<uint64_t>(std::numeric_limits<int64_t>::max())) {
            return STG_E_INVALIDFUNCTION;
        }
        position_ = target;
        if (position != nullptr) position->QuadPart = target;
        return S_OK;
    }

    HRESULT STDMETHODCALLTYPE Stat(STATSTG* status, DWORD) override {
        if (status == nullptr) return STG_E_INVALIDPOINTER;
        *status = {};
        status->type = STGTY_STREAM;
        status->cbSize.QuadPart = source_.Size();
        status->grfMode = STGM_READ;
        return S_OK;
    }

    // What a read-only stream without transactions need not do.
    HRESULT STDMETHODCALLTYPE Write(const void*, ULONG, ULONG*) override {
        return STG_E_ACCESSDENIED;
    }
    HRESULT STDMETHODCALLTYPE SetSize(ULARGE_INTEGER) override { return STG_E_ACCESSDENIED; }
    HRESULT STDMETHODCALLTYPE CopyTo(IStream*, ULARGE_INTEGER, ULARGE_INTEGER*,
                                     ULARGE_INTEGER*) override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE Commit(DWORD) override { return S_OK; }
    HRESULT STDMETHODCALLTYPE Revert() override { return S_OK; }
    HRESULT STDMETHODCALLTYPE LockRegion(ULARGE_INTEGER, ULARGE_INTEGER, DWORD) override {
        return STG_E_INVALIDFUNCTION;
    }
    HRESULT STDMETHODCALLTYPE UnlockRegion(ULARGE_INTEGER, ULARGE_INTEGER, DWORD) override {
        return STG_E_INVALIDFUNCTION;
    }
    HRESULT STDMETHODCALLTYPE Clone(IStream**) override { return E_NOTIMPL; }

  private:
    ~SourceStream() = default;  // Release only

    dib::ByteSource& source_;
    uint64_t position_ = 0;
    std::atomic<ULONG> references_{1};
};

}  // namespace

ComPtr<IStream> MakeStream(dib::ByteSource& source) {
    ComPtr<IStream> stream;
    // Not Attach: the one of mingw-w64 takes a reference of its own.
    *stream.GetAddressOf() = new SourceStream(source);
    return stream;
}

}  // namespace tessary::wic
