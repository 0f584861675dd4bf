#include "plugins/iftessmisc/misc_decoder.h"

#include <algorithm>
#include <array>
#include <string>

#include "plugins/iftessmisc/format.h"
#include "plugins/iftessmisc/picture_rows.h"

namespace tessary::misc {
namespace {

using codec::PictureForm;
using codec::PictureTarget;
using codec::Progress;
using codec::Result;

constexpr size_t kHeaderSize = 64;
constexpr size_t kMostPages = 100'000;

const Format* FormatOf(std::span<const uint8_t> header) {
    header = header.first(std::min(header.size(), kHeaderSize));
    const auto found = std::ranges::find_if(
        Formats(), [&](const Format& format) { return format.isSupported(header); });
    return found == Formats().end() ? nullptr : &*found;
}

Result FindFormat(dib::ByteSource& source, const Format*& format) {
    std::array<uint8_t, kHeaderSize> header{};
    const auto got = source.ReadAt(0, header);
    if (!got) return Result::kReadError;
    format = FormatOf(std::span(header).first(*got));
    return format == nullptr ? Result::kUnknownFormat : Result::kSuccess;
}

// A picture whose head was read.
struct Opened {
    explicit Opened(dib::ByteSource& source, const Page& place) : page(source, place) {}

    Result Read(const Format& format, Progress& progress) {
        const Result result = format.open(page, progress, reader);
        if (page.HasFailed()) return Result::kReadError;
        return result;
    }

    FilePage page;
    std::unique_ptr<PictureReader> reader;
};

Result DecodePage(dib::ByteSource& source, const Format& format, const Page& place,
                  PictureTarget& target, Progress& progress) {
    if (!progress.Report(0, 1)) return Result::kAborted;
    Opened opened(source, place);
    Result result = opened.Read(format, progress);
    bool isDamaged = result == Result::kBrokenData;
    if (result == Result::kSuccess) {
        result = PutPicture(*opened.reader, target, opened.page.Size(), progress, isDamaged);
        if (opened.page.HasFailed()) return Result::kReadError;
    }
    if (isDamaged || result == Result::kBrokenData) {
        progress.Tell(codec::Condition::kDamaged,
                      std::wstring(format.name) + L"データが壊れているか、途中で切れています");
    }
    if (result != Result::kSuccess) return result;
    return progress.Report(1, 1) ? Result::kSuccess : Result::kAborted;
}

Result FirstPage(dib::ByteSource& source, const Format*& format, Page& page) {
    const Result found = FindFormat(source, format);
    if (found != Result::kSuccess || format->pages == nullptr) return found;
    FilePage whole(source, {});
    const std::vector<Page> pages = format->pages(whole, 1);
    if (whole.HasFailed()) return Result::kReadError;
    if (pages.empty()) return Result::kBrokenData;
    page = pages[0];
    return Result::kSuccess;
}

class MiscPages final : public codec::FrameReader {
  public:
    MiscPages(const Format& format, std::vector<Page> pages)
        : format_(format), pages_(std::move(pages)) {}

    codec::FrameSet Frames() const override {
        return {codec::FrameKind::kPages, static_cast<uint32_t>(pages_.size()), 0};
    }
    Result Decode(dib::ByteSource& source, uint32_t index, PictureTarget& target,
                  Progress& progress, uint32_t& duration) override {
        duration = 0;
        return DecodePage(source, format_, pages_[index], target, progress);
    }

  private:
    const Format& format_;
    std::vector<Page> pages_;
};

}  // namespace

std::span<const Format> Formats() {
    static const std::array kAll{kPsd, kQoi, kFarbfeld, kRadiance, kMag, kDcx,
                                 kSgi, kXpm, kXbm,      kNetpbm,   kPcx, kTga};
    return kAll;
}

bool MiscDecoder::IsSupported(std::span<const uint8_t> header) const {
    return FormatOf(header) != nullptr;
}

Result MiscDecoder::ReadForm(dib::ByteSource& source, PictureForm& form) const {
    const Format* format = nullptr;
    Page page;
    if (const Result found = FirstPage(source, format, page); found != Result::kSuccess) {
        return found;
    }
    Opened opened(source, page);
    Progress nobody;
    const Result result = opened.Read(*format, nobody);
    if (result == Result::kSuccess) form = FormOf(opened.reader->Form());
    return result;
}

Result MiscDecoder::Decode(dib::ByteSource& source, PictureTarget& target,
                           Progress& progress) const {
    if (!progress.Report(0, 1)) return Result::kAborted;
    const Format* format = nullptr;
    Page page;
    if (const Result found = FirstPage(source, format, page); found != Result::kSuccess) {
        return found;
    }
    return DecodePage(source, *format, page, target, progress);
}

std::unique_ptr<codec::FrameReader> MiscDecoder::OpenFrames(dib::ByteSource& source) const {
    const Format* format = nullptr;
    if (FindFormat(source, format) != Result::kSuccess || format->pages == nullptr) return nullptr;
    std::vector<Page> pages = format->pages(source, kMostPages);
    return pages.size() < 2 ? nullptr : std::make_unique<MiscPages>(*format, std::move(pages));
}

}  // namespace tessary::misc
