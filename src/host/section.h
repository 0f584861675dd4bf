// Memory that two processes share.
#pragma once

#include <windows.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>

#include "app/base/handles.h"

namespace tessary {

namespace handle_traits {
struct KernelObject : NullIsNone<HANDLE> {
    static void Close(HANDLE object) { CloseHandle(object); }
};
}  // namespace handle_traits
using UniqueSection = UniqueHandle<handle_traits::KernelObject>;

// A section and all of it in this process's memory.
class Section {
  public:
    enum class Access { kRead, kWrite, kPrivateWrite };  // the last: what is written is ours alone

    // A new one, of at least one byte, full of zeros. Nothing without memory.
    static std::optional<Section> Make(size_t size, SECURITY_ATTRIBUTES* security = nullptr);
    // One that somebody else has made. Nothing when it is none, or smaller than `size`.
    static std::optional<Section> Open(UniqueSection section, uint64_t size, Access access);

    HANDLE Handle() const { return section_.Get(); }
    std::span<uint8_t> Bytes() const { return {view_.get(), size_}; }

  private:
    struct Unmap {
        void operator()(uint8_t* view) const { UnmapViewOfFile(view); }
    };

    Section(UniqueSection section, void* view, size_t size)
        : section_(std::move(section)), view_(static_cast<uint8_t*>(view)), size_(size) {}

    UniqueSection section_;
    std::unique_ptr<uint8_t, Unmap> view_;
    size_t size_;  // that was asked for
};

}  // namespace tessary
