#include "plugins/iftesstiff/tiff_file.h"

#include <cstdarg>
#include <cstdio>
#include <span>

namespace tessary::tiff {
namespace {

// Of a single block, as a strip that is read at once. A process has 2 GB of addresses.
constexpr tmsize_t kMostMemory = 1 << 30;

// What is wrong shows in what the calls answer.
int KeepSilent(TIFF*, void*, const char*, const char*, va_list) {
    return 1;
}

struct OptionsDeleter {
    void operator()(TIFFOpenOptions* options) const { TIFFOpenOptionsFree(options); }
};

}  // namespace

TiffFile::TiffFile(dib::ByteSource& source) : source_(source) {
    const std::unique_ptr<TIFFOpenOptions, OptionsDeleter> options(TIFFOpenOptionsAlloc());
    if (options == nullptr) return;
    TIFFOpenOptionsSetMaxSingleMemAlloc(options.get(), kMostMemory);
    TIFFOpenOptionsSetErrorHandlerExtR(options.get(), KeepSilent, nullptr);
    TIFFOpenOptionsSetWarningHandlerExtR(options.get(), KeepSilent, nullptr);
    // m: no mapping of the file into memory.
    handle_.reset(TIFFClientOpenExt("", "rm", this, OnRead, OnWrite, OnSeek, OnClose, OnSize,
                                    nullptr, nullptr, options.get()));
}

uint16_t TiffFile::Short(uint32_t tag, uint16_t otherwise) const {
    uint16_t value = 0;
    return TIFFGetFieldDefaulted(handle_.get(), tag, &value) != 0 ? value : otherwise;
}

uint32_t TiffFile::Long(uint32_t tag, uint32_t otherwise) const {
    uint32_t value = 0;
    return TIFFGetFieldDefaulted(handle_.get(), tag, &value) != 0 ? value : otherwise;
}

float TiffFile::Float(uint32_t tag, float otherwise) const {
    float value = 0;
    return TIFFGetFieldDefaulted(handle_.get(), tag, &value) != 0 ? value : otherwise;
}

tmsize_t TiffFile::OnRead(thandle_t self, void* into, tmsize_t size) {
    auto& file = *static_cast<TiffFile*>(self);
    if (size <= 0) return 0;
    const std::span bytes(static_cast<uint8_t*>(into), static_cast<size_t>(size));
    const auto got = file.source_.ReadAt(file.position_, bytes);
    if (!got) {
        file.hasFailed_ = true;
        return -1;
    }
    file.position_ += *got;
    return static_cast<tmsize_t>(*got);
}

toff_t TiffFile::OnSeek(thandle_t self, toff_t offset, int from) {
    auto& file = *static_cast<TiffFile*>(self);
    const uint64_t base = from == SEEK_CUR   ? file.position_
                          : from == SEEK_END ? file.source_.Size()
                                             : 0;
    return file.position_ = base + offset;
}

toff_t TiffFile::OnSize(thandle_t self) {
    return static_cast<TiffFile*>(self)->source_.Size();
}

}  // namespace tessary::tiff
