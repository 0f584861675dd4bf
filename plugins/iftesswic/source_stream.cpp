#include "plugins/iftesswic/source_stream.h"

#include <algorithm>
#include <atomic>
#include <limits>
#include <mutex>
#include <new>
#include <vector>

namespace tessary::wic {
namespace {

constexpr size_t kCopyStep = 64u << 10;

// What a stream answers when that which it belongs to is gone.
constexpr HRESULT kGone = STG_E_REVERTED;

// The result of a body that may run out of memory: nothing is thrown at the system.
template <typename Body>
HRESULT Guarded(Body body) {
    try {
        return body();
    } catch (const std::bad_alloc&) {
        return E_OUTOFMEMORY;
    } catch (...) {
        return STG_E_READFAULT;
    }
}

// Keeps the code of this module where it is until the process ends.
void StayLoaded() {
    HMODULE module = nullptr;
    GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_PIN | GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS,
                       reinterpret_cast<const wchar_t*>(&StayLoaded), &module);
}

}  // namespace

// What all streams of one source share.
class LentStream::Source {
  public:
    explicit Source(dib::ByteSource& source) : source_(&source), size_(source.Size()) {}

    uint64_t Size() const { return size_; }

    void TakeBack() {
        const std::lock_guard lock(mutex_);
        source_ = nullptr;
    }

    // Reads at a position, which moves on.
    HRESULT Read(uint64_t& position, std::span<uint8_t> into, size_t& got) {
        const std::lock_guard lock(mutex_);
        got = 0;
        if (source_ == nullptr) return kGone;
        const std::optional<size_t> count = source_->ReadAt(position, into);
        if (!count) return STG_E_READFAULT;
        got = *count;
        position += got;
        return got == into.size() ? S_OK : S_FALSE;
    }

    // The position is as much shared by threads as the source.
    uint64_t At(const uint64_t& position) {
        const std::lock_guard lock(mutex_);
        return position;
    }

    HRESULT Seek(uint64_t& position, LARGE_INTEGER move, DWORD origin, ULARGE_INTEGER* reached) {
        const std::lock_guard lock(mutex_);
        uint64_t base = 0;
        if (origin == STREAM_SEEK_CUR) {
            base = position;
        } else if (origin == STREAM_SEEK_END) {
            base = size_;
        } else if (origin != STREAM_SEEK_SET) {
            return STG_E_INVALIDFUNCTION;
        }
        const uint64_t target = base + static_cast<uint64_t>(move.QuadPart);
        // Both a wrap below 0 and one beyond the largest file end up above this.
        if (target > static_cast<uint64_t>(std::numeric_limits<int64_t>::max())) {
            return STG_E_INVALIDFUNCTION;
        }
        position = target;
        if (reached != nullptr) reached->QuadPart = target;
        return S_OK;
    }

  private:
    std::mutex mutex_;
    dib::ByteSource* source_;
    const uint64_t size_;
};

// A position in a source. Agile: whoever asks for it from another apartment gets this very object,
// or it would be read through the message queue of a thread that waits for the decoder.
class LentStream::Stream final : public IStream, public IAgileObject {
  public:
    Stream(std::shared_ptr<Source> source, uint64_t position)
        : source_(std::move(source)), position_(position) {
        if (FAILED(CoCreateFreeThreadedMarshaler(static_cast<IStream*>(this), &marshaler_))) {
            marshaler_ = nullptr;
        }
    }

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID id, void** object) override {
        if (object == nullptr) return E_POINTER;
        *object = nullptr;
        // Its references are this object's.
        if (IsEqualIID(id, IID_IMarshal) && marshaler_) {
            return marshaler_->QueryInterface(id, object);
        }
        if (IsEqualIID(id, __uuidof(IAgileObject))) {
            *object = static_cast<IAgileObject*>(this);
        } else if (IsEqualIID(id, IID_IUnknown) || IsEqualIID(id, IID_ISequentialStream) ||
                   IsEqualIID(id, IID_IStream)) {
            *object = static_cast<IStream*>(this);
        } else {
            return E_NOINTERFACE;
        }
        AddRef();
        return S_OK;
    }

    ULONG STDMETHODCALLTYPE AddRef() override { return ++references_; }

    ULONG STDMETHODCALLTYPE Release() override {
        const ULONG left = --references_;
        if (left == 0) delete this;
        return left;
    }

    HRESULT STDMETHODCALLTYPE Read(void* out, ULONG wanted, ULONG* read) override {
        if (read != nullptr) *read = 0;
        if (out == nullptr) return STG_E_INVALIDPOINTER;
        return Guarded([&] {
            size_t got = 0;
            const HRESULT code =
                source_->Read(position_, {static_cast<uint8_t*>(out), wanted}, got);
            if (read != nullptr) *read = static_cast<ULONG>(got);
            return code;
        });
    }

    HRESULT STDMETHODCALLTYPE Seek(LARGE_INTEGER move, DWORD origin,
                                   ULARGE_INTEGER* position) override {
        return source_->Seek(position_, move, origin, position);
    }

    HRESULT STDMETHODCALLTYPE Stat(STATSTG* status, DWORD) override {
        if (status == nullptr) return STG_E_INVALIDPOINTER;
        *status = {};
        status->type = STGTY_STREAM;
        status->cbSize.QuadPart = source_->Size();
        status->grfMode = STGM_READ;
        return S_OK;
    }

    HRESULT STDMETHODCALLTYPE CopyTo(IStream* target, ULARGE_INTEGER wanted, ULARGE_INTEGER* read,
                                     ULARGE_INTEGER* written) override {
        if (read != nullptr) read->QuadPart = 0;
        if (written != nullptr) written->QuadPart = 0;
        if (target == nullptr) return STG_E_INVALIDPOINTER;
        return Guarded([&] {
            std::vector<uint8_t> bytes(kCopyStep);
            for (uint64_t left = wanted.QuadPart; left > 0;) {
                const auto step = static_cast<size_t>(std::min<uint64_t>(left, bytes.size()));
                size_t got = 0;
                const HRESULT code = source_->Read(position_, std::span(bytes).first(step), got);
                if (FAILED(code)) return code;
                ULONG put = 0;
                const HRESULT taken = target->Write(bytes.data(), static_cast<ULONG>(got), &put);
                if (read != nullptr) read->QuadPart += got;
                if (written != nullptr) written->QuadPart += put;
                if (FAILED(taken)) return taken;
                if (code == S_FALSE) return S_OK;  // the source ends
                left -= got;
            }
            return S_OK;
        });
    }

    HRESULT STDMETHODCALLTYPE Clone(IStream** clone) override {
        if (clone == nullptr) return STG_E_INVALIDPOINTER;
        *clone = nullptr;
        return Guarded([&] {
            *clone = new Stream(source_, source_->At(position_));
            return S_OK;
        });
    }

    // What a read-only stream without transactions need not do.
    HRESULT STDMETHODCALLTYPE Write(const void*, ULONG, ULONG* written) override {
        if (written != nullptr) *written = 0;
        return STG_E_ACCESSDENIED;
    }
    HRESULT STDMETHODCALLTYPE SetSize(ULARGE_INTEGER) override { return STG_E_ACCESSDENIED; }
    HRESULT STDMETHODCALLTYPE Commit(DWORD) override { return S_OK; }
    HRESULT STDMETHODCALLTYPE Revert() override { return S_OK; }
    HRESULT STDMETHODCALLTYPE LockRegion(ULARGE_INTEGER, ULARGE_INTEGER, DWORD) override {
        return STG_E_INVALIDFUNCTION;
    }
    HRESULT STDMETHODCALLTYPE UnlockRegion(ULARGE_INTEGER, ULARGE_INTEGER, DWORD) override {
        return STG_E_INVALIDFUNCTION;
    }

  private:
    ~Stream() = default;  // Release only

    const std::shared_ptr<Source> source_;
    uint64_t position_;  // under the source's lock
    ComPtr<IUnknown> marshaler_;
    std::atomic<ULONG> references_{1};
};

LentStream::LentStream(dib::ByteSource& source) : source_(std::make_shared<Source>(source)) {
    // Not Attach: the one of mingw-w64 takes a reference of its own.
    *stream_.GetAddressOf() = new Stream(source_, 0);
}

LentStream::~LentStream() {
    IStream* const stream = stream_.Detach();
    if (stream->Release() != 0) StayLoaded();
    source_->TakeBack();
}

}  // namespace tessary::wic
