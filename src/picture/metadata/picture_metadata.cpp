#include "picture/metadata/picture_metadata.h"

#include <windows.h>

#include <utility>

#include "app/base/paths.h"
#include "picture/srgb_picture.h"

namespace tessary {
namespace {

uint64_t Joined(const FILETIME& time) {
    return uint64_t{time.dwHighDateTime} << 32 | time.dwLowDateTime;
}

// When it was made only of a file that is still the one that was read. A member lies in none of its
// own.
files::FileDates DatesOf(const PictureOrigin& origin) {
    if (!origin.member.empty()) return {.changed = origin.memberChanged};
    files::FileDates dates{.changed = origin.stamp.changed};
    WIN32_FILE_ATTRIBUTE_DATA data{};
    if (GetFileAttributesExW(ExtendedPath(origin.path).c_str(), GetFileExInfoStandard, &data) &&
        Joined(data.ftLastWriteTime) == dates.changed) {
        dates.created = Joined(data.ftCreationTime);
    }
    return dates;
}

}  // namespace

MetadataAnswer MetadataOf(const PictureOrigin& origin, const metadata::SavedPicture& saved,
                          const std::shared_ptr<MetadataHost>& host) {
    if (!origin.member.empty()) return host->Ask({.bytes = origin.head, .saved = saved});
    const auto isSame = [&] { return ExactStampOf(origin.path) == origin.stamp; };
    if (!isSame()) return {};
    MetadataAnswer answer = host->Ask({.path = origin.path, .saved = saved});
    return isSame() ? std::move(answer) : MetadataAnswer();
}

std::optional<KeptWish> WishFor(const Picture& picture, const SaverFormat& format,
                                const saving::SaveOptions& options) {
    if (!picture || picture.Origin() == nullptr) return std::nullopt;
    KeptWish wish{.dates = options.keepDates != 0};
    // Bitmap files have none.
    if (format.KeepsExif(options) && !picture.Origin()->plugin.empty()) {
        wish.saved = {.width = static_cast<uint32_t>(picture.Width()),
                      .height = static_cast<uint32_t>(picture.Height()),
                      .keepsPosition = format.KeepsPosition(options),
                      .isSrgb = !format.KeepsProfile(options) || !IsSavableInOwnColors(picture)};
    }
    return wish.saved.width != 0 || wish.dates ? std::optional(wish) : std::nullopt;
}

KeptMetadata KeptOf(const PictureOrigin& origin, const KeptWish& wish) {
    KeptMetadata kept;
    if (wish.dates) kept.dates = DatesOf(origin);
    if (wish.saved.width != 0) kept.exif = MetadataOf(origin, wish.saved).exif;
    return kept;
}

Picture WithMetadata(const Picture& picture, const SaverFormat& format,
                     const saving::SaveOptions& options) {
    Picture result = picture.Another();
    if (const auto wish = WishFor(picture, format, options)) {
        KeptMetadata kept = KeptOf(*picture.Origin(), *wish);
        result.SetExif(std::move(kept.exif));
        result.SetDates(kept.dates);
    }
    return result;
}

}  // namespace tessary
