#include "app/settings/saver_format.h"

#include <algorithm>
#include <array>

#include "app/base/paths.h"
#include "app/base/text.h"
#include "helpers/convertdib/convertdib.h"
#include "helpers/dcjpeg/dcjpeg.h"
#include "helpers/dcpng/dcpng.h"

namespace tessary {
namespace {

using saving::SaveOptions;
using enum SaverOption::Kind;

// --- BMP ---

constexpr std::wstring_view kBmpExtensions[] = {L"bmp", L"dib"};
constexpr uint16_t kBmpDepths[] = {1, 4, 8, 16, 24, 32};
constexpr SaverChoice kBmpTypes[] = {{L"windows", L"&Windows"}, {L"os2", L"&OS/2"}};

constexpr SaverOption kBmpOptions[] = {
    {.kind = kSwitch,
     .key = L"bmp_saveRLE",
     .in = [](SaveOptions& all) -> int16_t& { return all.bmp.saveRLE; },
     .argument = L"bmp-rle",
     .caption = L"&RLE圧縮",
     .isForFirstChoice = true},
    {.kind = kChoice,
     .key = L"bmp_saveType",
     .in = [](SaveOptions& all) -> int16_t& { return all.bmp.saveType; },
     .argument = L"bmp-type",
     .caption = L"ファイルの種類",
     .choices = kBmpTypes},
};

std::wstring DescribedBmp(const SaveOptions& all) {
    if (all.bmp.saveType == 1) return L"OS/2形式";
    return all.bmp.saveRLE != 0 ? L"Windows形式、RLE圧縮" : L"Windows形式、圧縮なし";
}

// --- PNG ---

constexpr std::wstring_view kPngExtensions[] = {L"png"};
constexpr uint16_t kPngDepths[] = {1, 4, 8, 24, 32};

constexpr SaverOption kPngOptions[] = {
    {.kind = kSwitch,
     .key = L"png_saveInterless",
     .in = [](SaveOptions& all) -> int16_t& { return all.png.interlace; },
     .argument = L"png-interlace",
     .caption = L"インターレス形式で出力(&I)"},
    {.kind = kSwitch,
     .key = L"png_saveExif",
     .in = [](SaveOptions& all) -> int16_t& { return all.pngExif; },
     .argument = L"png-exif",
     .caption = L"撮影情報(Exif)を残す(&E)"},
    {.kind = kSwitch,
     .key = L"png_savePosition",
     .in = [](SaveOptions& all) -> int16_t& { return all.pngPosition; },
     .argument = L"png-gps",
     .caption = L"撮影情報の撮影場所も残す(&G)"},
    {.kind = kSwitch,
     .key = L"png_saveProfile",
     .in = [](SaveOptions& all) -> int16_t& { return all.pngProfile; },
     .argument = L"png-icc",
     .caption = L"カラープロファイル(ICC)を残す(&C)"},
    {.kind = kLevel,
     .key = L"png_saveQuality",
     .in = [](SaveOptions& all) -> int16_t& { return all.png.quality; },
     .argument = L"png-level",
     .caption = L"圧縮率(&Q)",
     .most = 9,
     .lowCaption = L"処理速度優先",
     .highCaption = L"圧縮率優先"},
};

std::wstring DescribedPng(const SaveOptions& all) {
    std::wstring text = L"圧縮率 " + std::to_wstring(all.png.quality);
    if (all.png.interlace != 0) text += L"、インターレス";
    return text;
}

// --- JPEG ---

constexpr std::wstring_view kJpegExtensions[] = {L"jpg", L"jpeg", L"jpe", L"jfif"};
constexpr uint16_t kJpegDepths[] = {8, 24};  // 8: greys

constexpr SaverOption kJpegOptions[] = {
    {.kind = kSwitch,
     .key = L"jpg_saveOptimizedHaffman",
     .in = [](SaveOptions& all) -> int16_t& { return all.jpeg.optimizedHuffman; },
     .argument = L"jpeg-optimize",
     .caption = L"圧縮を最適化する(&O)"},
    {.kind = kSwitch,
     .key = L"jpg_saveProgressive",
     .in = [](SaveOptions& all) -> int16_t& { return all.jpeg.progressive; },
     .argument = L"jpeg-progressive",
     .caption = L"プログレッシブJPEG(&P)"},
    {.kind = kSwitch,
     .key = L"jpg_saveExif",
     .in = [](SaveOptions& all) -> int16_t& { return all.jpegExif; },
     .argument = L"jpeg-exif",
     .caption = L"撮影情報(Exif)を残す(&E)"},
    {.kind = kSwitch,
     .key = L"jpg_savePosition",
     .in = [](SaveOptions& all) -> int16_t& { return all.jpegPosition; },
     .argument = L"jpeg-gps",
     .caption = L"撮影情報の撮影場所も残す(&G)"},
    {.kind = kSwitch,
     .key = L"jpg_saveProfile",
     .in = [](SaveOptions& all) -> int16_t& { return all.jpegProfile; },
     .argument = L"jpeg-icc",
     .caption = L"カラープロファイル(ICC)を残す(&C)"},
    {.kind = kLevel,
     .key = L"jpg_saveQuality",
     .in = [](SaveOptions& all) -> int16_t& { return all.jpeg.quality; },
     .argument = L"jpeg-quality",
     .caption = L"品質(&Q)",
     .most = 100,
     .step = 10,
     .lowCaption = L"圧縮率優先",
     .highCaption = L"画質優先"},
};

std::wstring DescribedJpeg(const SaveOptions& all) {
    std::wstring text = L"品質 " + std::to_wstring(all.jpeg.quality);
    if (all.jpeg.optimizedHuffman != 0) text += L"、最適化";
    if (all.jpeg.progressive != 0) text += L"、プログレッシブ";
    return text;
}

std::wstring LossOfJpeg(const SaveOptions& all) {
    return L"品質 " + std::to_wstring(all.jpeg.quality) + L" で圧縮し直すので画質が落ち";
}

constexpr SaverOption kShared[] = {
    {.kind = kSwitch,
     .key = L"saveKeepDate",
     .in = [](SaveOptions& all) -> int16_t& { return all.keepDates; },
     .argument = L"keep-date",
     .caption = L"元のファイルの日時にする（すべての形式）(&T)"},
};

const SaverFormat kFormats[] = {
    {.name = L"BMP",
     .description = L"ビットマップ (*.bmp)",
     .extensions = kBmpExtensions,
     .depths = kBmpDepths,
     .metadata = {.alpha = true},
     .writer = {.library = L"convertdib.dll",
                .entry = convertdib::kSaveToBITMAPFileExtrasName,
                .bytesEntry = convertdib::kMakeBITMAPBytesName,
                .options = [](const SaveOptions& all) -> const void* { return &all.bmp; }},
     .options = kBmpOptions,
     .page = 0,
     .described = DescribedBmp,
     .loss = nullptr,
     .help = LR"(  --bmp-type 種類         windows または os2
  --bmp-rle, --no-bmp-rle BMP を圧縮する・しない
)",
     .englishHelp = LR"(  --bmp-type TYPE         windows or os2
  --bmp-rle, --no-bmp-rle run-length encoding
)"},
    {.name = L"PNG",
     .description = L"PNG (*.png)",
     .extensions = kPngExtensions,
     .depths = kPngDepths,
     .metadata = {.alpha = true,
                  .exif = [](const SaveOptions& all) { return all.pngExif; },
                  .position = [](const SaveOptions& all) { return all.pngPosition; },
                  .profile = [](const SaveOptions& all) { return all.pngProfile; }},
     .writer = {.library = L"dcpng.dll",
                .entry = dcpng::kSaveToPNGFileExtrasName,
                .bytesEntry = dcpng::kMakePNGBytesExtrasName,
                .holdsExtras = true,
                .zeroIsSuccess = true,
                .options = [](const SaveOptions& all) -> const void* { return &all.png; }},
     .options = kPngOptions,
     .page = 2,
     .described = DescribedPng,
     .loss = nullptr,
     .help = LR"(  --png-level 数          PNG の圧縮率 (0-9)
  --png-interlace, --no-png-interlace
  --png-exif, --no-png-exif 撮影情報 (Exif) を残す・残さない
  --png-gps, --no-png-gps   撮影場所も残す・残さない
  --png-icc, --no-png-icc   カラープロファイルを残す・sRGB に直す
)",
     .englishHelp = LR"(  --png-level N           compression, 0 to 9
  --png-interlace, --no-png-interlace
  --png-exif, --no-png-exif keep what photographs say (Exif)
  --png-gps, --no-png-gps   with the place
  --png-icc, --no-png-icc   keep the colours with their profile, or convert to sRGB
)"},
    {.name = L"JPEG",
     .description = L"JPEG (*.jpg)",
     .extensions = kJpegExtensions,
     .depths = kJpegDepths,
     .metadata = {.exif = [](const SaveOptions& all) { return all.jpegExif; },
                  .position = [](const SaveOptions& all) { return all.jpegPosition; },
                  .profile = [](const SaveOptions& all) { return all.jpegProfile; }},
     .writer = {.library = L"dcjpeg.dll",
                .entry = dcjpeg::kSaveToJPEGFileExtrasName,
                .bytesEntry = dcjpeg::kMakeJPEGBytesExtrasName,
                .holdsExtras = true,
                .options = [](const SaveOptions& all) -> const void* { return &all.jpeg; }},
     .options = kJpegOptions,
     .page = 1,
     .described = DescribedJpeg,
     .loss = LossOfJpeg,
     .help = LR"(  --jpeg-quality 数       JPEG の品質 (0-100)
  --jpeg-progressive, --no-jpeg-progressive
  --jpeg-optimize, --no-jpeg-optimize
  --jpeg-exif, --no-jpeg-exif 撮影情報 (Exif) を残す・残さない
  --jpeg-gps, --no-jpeg-gps   撮影場所も残す・残さない
  --jpeg-icc, --no-jpeg-icc   カラープロファイルを残す・sRGB に直す
)",
     .englishHelp = LR"(  --jpeg-quality N        0 to 100
  --jpeg-progressive, --no-jpeg-progressive
  --jpeg-optimize, --no-jpeg-optimize
  --jpeg-exif, --no-jpeg-exif keep what photographs say (Exif)
  --jpeg-gps, --no-jpeg-gps   with the place
  --jpeg-icc, --no-jpeg-icc   keep the colours with their profile, or convert to sRGB
)"},
};

}  // namespace

bool SaverFormat::HasExtension(std::wstring_view extension) const {
    return std::ranges::any_of(extensions,
                               [&](auto own) { return EqualsIgnoreCase(own, extension); });
}

std::span<const SaverFormat> SaverFormats() {
    return kFormats;
}

std::span<const SaverOption> SharedSaverOptions() {
    return kShared;
}

std::vector<const wchar_t*> SaverFormatNames() {
    std::vector<const wchar_t*> names;
    for (const SaverFormat& format : kFormats)
        names.push_back(format.name);
    return names;
}

const SaverFormat* SaverFormatAt(int32_t index) {
    return index >= 0 && static_cast<size_t>(index) < std::size(kFormats) ? &kFormats[index]
                                                                          : nullptr;
}

const SaverFormat* SaverFormatOf(const std::wstring& fileName) {
    const std::wstring extension = UpperExtensionOf(fileName);
    const auto found = std::ranges::find_if(
        kFormats, [&](const SaverFormat& format) { return format.HasExtension(extension); });
    return found == std::end(kFormats) ? nullptr : &*found;
}

}  // namespace tessary
