#include "plugins/iftesswic/safe_file.h"

#include "plugins/iftesswic/dds_file.h"
#include "plugins/iftesswic/number_reader.h"
#include "plugins/iftesswic/tiff_file.h"

namespace tessary::wic {
namespace {

constexpr int kMostBoxes = 1000;

// A HEIF file is boxes one behind the other: length, name, and what is in it.
bool IsBoxCut(dib::ByteSource& file) {
    NumberReader numbers(file, true);
    uint64_t at = 0;
    for (int box = 0; box < kMostBoxes && at < file.Size(); ++box) {
        uint64_t length = numbers.Long(at).value_or(0);
        if (length == 0) return false;  // up to the end of the file
        if (length == 1) {
            length = uint64_t{numbers.Long(at + 8).value_or(0)} << 32 |
                     numbers.Long(at + 12).value_or(0);
        }
        if (length < 8 || length > file.Size() - at) return true;
        at += length;
    }
    return false;
}

}  // namespace

SafeFile::SafeFile(dib::ByteSource& file, Container container, const Page& page)
    : patched_(file), source_(&file) {
    switch (container) {
        case Container::kUnknown:
            inspection_ = {codec::Result::kUnknownFormat};
            break;
        case Container::kIcon:
        case Container::kCursor:
            source_ = &icon_.emplace(file, page.icon);
            inspection_ = icon_->Found();
            break;
        case Container::kTiff: {
            TiffFile tiff = InspectTiff(file, patched_, page.directory);
            inspection_ = std::move(tiff.inspection);
            rowsPerStrip_ = tiff.rowsPerStrip;
            hasBigEndianSamples_ = tiff.hasBigEndianSamples;
            source_ = &patched_;
            break;
        }
        case Container::kJpegXr:
            inspection_ = InspectJpegXr(file, patched_);
            source_ = &patched_;
            break;
        case Container::kDds:
            inspection_ = InspectDds(file, patched_);
            source_ = &patched_;
            break;
        case Container::kHeif:
            if (IsBoxCut(file)) inspection_ = Damaged(L"HEIFデータが途中で切れています");
            break;
    }
}

}  // namespace tessary::wic
