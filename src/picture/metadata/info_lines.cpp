#include "picture/metadata/info_lines.h"

#include <windows.h>

#include <algorithm>
#include <cmath>
#include <cwchar>

#include "app/base/file_texts.h"
#include "app/base/paths.h"
#include "app/base/text.h"

namespace tessary {
namespace {

using metadata::FieldKind;

constexpr double kMetresPerInch = 0.0254;
constexpr uint64_t kTenThousand = 10'000;

std::wstring Decimal(double value, int places) {
    wchar_t text[64];
    std::swprintf(text, std::size(text), L"%.*f", places, value);
    return text;
}

std::wstring PixelsText(const Picture& picture) {
    std::wstring text = std::to_wstring(picture.Width()) + L" × " +
                        std::to_wstring(picture.Height()) + L"、" +
                        std::to_wstring(ToldDepth(picture)) + L" ビット";
    if (picture.HasAlpha()) text += L"（透明あり）";
    return text;
}

void AddOrigin(const PictureOrigin& origin, const std::wstring& plugin,
               std::vector<InfoLine>& lines) {
    const bool isMember = !origin.member.empty();
    lines.push_back({L"ファイル", FileNameOf(isMember ? origin.member : origin.path)});
    if (origin.page != 0) lines.push_back({L"ページ", std::to_wstring(origin.page)});
    lines.push_back(isMember ? InfoLine{L"書庫", origin.path}
                             : InfoLine{L"フォルダ", FolderOf(origin.path)});
    lines.push_back({L"サイズ", FileSizeText(isMember ? origin.memberSize : origin.stamp.size)});
    lines.push_back({isMember ? L"書庫の日時" : L"更新日時", FileTimeText(origin.stamp.changed)});
    lines.push_back({L"プラグイン", plugin.empty() ? L"なし（ビットマップ）" : plugin});
    const bool isLong = origin.milliseconds >= 1000;
    lines.push_back({L"読み込み時間", isLong ? Decimal(origin.milliseconds / 1000.0, 2) + L" 秒"
                                             : std::to_wstring(origin.milliseconds) + L" ミリ秒"});
}

// 2024:05:31 12:34:56, as the standard has it; others stay as they are.
std::wstring DateText(std::wstring text) {
    constexpr size_t kDateLength = 10;
    if (text.find_first_of(L"123456789") == text.npos) return {};
    if (text.size() < kDateLength || text[4] != L':' || text[7] != L':') return text;
    text[4] = text[7] = L'/';
    return text;
}

std::wstring FlashText(const std::wstring& text) {
    const unsigned long flash = std::wcstoul(text.c_str(), nullptr, 10);
    if ((flash & 0x20) != 0) return L"なし";
    std::wstring told = (flash & 1) != 0 ? L"発光" : L"非発光";
    if ((flash & 0x18) == 0x18) told += L"（自動）";
    if ((flash & 0x40) != 0) told += L"（赤目軽減）";
    return told;
}

std::wstring OrientationText(const std::wstring& text) {
    constexpr const wchar_t* kTexts[] = {L"そのまま",
                                         L"左右反転",
                                         L"180 度回転",
                                         L"上下反転",
                                         L"左右反転して左に 90 度回転",
                                         L"右に 90 度回転",
                                         L"左右反転して右に 90 度回転",
                                         L"左に 90 度回転"};
    const unsigned long number = std::wcstoul(text.c_str(), nullptr, 10);
    return number >= 1 && number <= std::size(kTexts) ? kTexts[number - 1] : L"";
}

struct Wording {
    FieldKind kind;
    const wchar_t* label;
    const wchar_t* before;
    const wchar_t* behind;
    std::wstring (*worded)(const std::wstring& text) = nullptr;
};

constexpr Wording kWordings[] = {
    {FieldKind::kDateTaken, L"撮影日時", L"", L"",
     [](const std::wstring& text) { return DateText(text); }},
    {FieldKind::kMaker, L"メーカー", L"", L""},
    {FieldKind::kModel, L"カメラ", L"", L""},
    {FieldKind::kLens, L"レンズ", L"", L""},
    {FieldKind::kExposureTime, L"露出時間", L"", L" 秒"},
    {FieldKind::kFNumber, L"絞り", L"f/", L""},
    {FieldKind::kIso, L"ISO 感度", L"", L""},
    {FieldKind::kExposureBias, L"露出補正", L"", L" EV"},
    {FieldKind::kFocalLength, L"焦点距離", L"", L" mm"},
    {FieldKind::kFocalLength35, L"35 mm 換算", L"", L" mm"},
    {FieldKind::kFlash, L"フラッシュ", L"", L"", FlashText},
    {FieldKind::kPosition, L"撮影場所", L"", L""},
    {FieldKind::kOrientation, L"向き", L"", L"", OrientationText},
    {FieldKind::kResolution, L"解像度", L"", L""},
    {FieldKind::kTitle, L"題名", L"", L""},
    {FieldKind::kDescription, L"説明", L"", L""},
    {FieldKind::kComment, L"コメント", L"", L""},
    {FieldKind::kArtist, L"作者", L"", L""},
    {FieldKind::kCopyright, L"著作権", L"", L""},
    {FieldKind::kSoftware, L"ソフトウェア", L"", L""},
    {FieldKind::kProfile, L"プロファイル", L"", L""},
};

// Control characters, and those that turn the direction of what stands around them.
bool IsHarmful(wchar_t unit) {
    return unit < L' ' || (unit >= 0x7F && unit < 0xA0) || (unit >= 0x200B && unit <= 0x200F) ||
           (unit >= 0x2028 && unit <= 0x202E) || (unit >= 0x2060 && unit <= 0x2069) ||
           unit == 0xFEFF || unit == 0xFFFE || unit == 0xFFFF;
}

}  // namespace

std::wstring MetadataText(std::string_view text) {
    std::wstring wide = FromAnsi(text, CP_UTF8);
    std::ranges::replace_if(
        wide, [](wchar_t unit) { return unit == L'\t' || unit == L'\r' || unit == L'\n'; }, L' ');
    std::erase_if(wide, IsHarmful);
    return std::wstring(TrimSpaces(wide));
}

std::vector<InfoLine> PictureLines(const Picture& picture, const std::wstring& plugin,
                                   const std::wstring& damage) {
    std::vector<InfoLine> lines;
    if (picture.Origin() != nullptr) AddOrigin(*picture.Origin(), plugin, lines);
    lines.push_back({L"画像", PixelsText(picture)});
    const uint64_t pixels =
        uint64_t{static_cast<uint32_t>(picture.Width())} * static_cast<uint32_t>(picture.Height());
    if (pixels >= kTenThousand) {
        lines.push_back(
            {L"画素数", GroupedNumber((pixels + kTenThousand / 2) / kTenThousand) + L" 万"});
    }
    const dib::BitmapInfoHeader& header = picture.Header();
    if (header.xPelsPerMeter > 0 && header.yPelsPerMeter > 0) {
        lines.push_back({L"印刷解像度", Decimal(header.xPelsPerMeter * kMetresPerInch, 0) + L" × " +
                                            Decimal(header.yPelsPerMeter * kMetresPerInch, 0) +
                                            L" dpi"});
    }
    if (!damage.empty()) lines.push_back({L"損傷", damage});
    return lines;
}

std::vector<InfoLine> MetadataLines(const metadata::Fields& fields) {
    std::vector<InfoLine> lines;
    for (const metadata::Field& field : fields) {
        const auto wording = std::ranges::find(kWordings, field.kind, &Wording::kind);
        if (wording == std::end(kWordings)) continue;
        std::wstring text = MetadataText(field.text);
        if (wording->worded != nullptr) text = wording->worded(text);
        if (!text.empty())
            lines.push_back({wording->label, wording->before + text + wording->behind});
    }
    return lines;
}

}  // namespace tessary
