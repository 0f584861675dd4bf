#include "picture/metadata/picture_metadata.h"

#include <utility>

namespace tessary {

MetadataAnswer MetadataOf(const PictureOrigin& origin, const metadata::SavedPicture& saved,
                          const std::shared_ptr<MetadataHost>& host) {
    if (!origin.member.empty()) return host->Ask({.bytes = origin.head, .saved = saved});
    const auto isSame = [&] { return ExactStampOf(origin.path) == origin.stamp; };
    if (!isSame()) return {};
    MetadataAnswer answer = host->Ask({.path = origin.path, .saved = saved});
    return isSame() ? std::move(answer) : MetadataAnswer();
}

std::optional<metadata::SavedPicture> WishFor(const Picture& picture, const SaverFormat& format,
                                              const saving::SaveOptions& options) {
    if (!picture || picture.Origin() == nullptr || !format.KeepsExif(options)) return std::nullopt;
    metadata::SavedPicture saved;
    saved.width = static_cast<uint32_t>(picture.Width());
    saved.height = static_cast<uint32_t>(picture.Height());
    saved.keepsPosition = format.KeepsPosition(options);
    return saved;
}

Picture WithMetadata(const Picture& picture, const SaverFormat& format,
                     const saving::SaveOptions& options) {
    Picture result = picture.Another();
    if (const auto wish = WishFor(picture, format, options)) {
        result.SetExif(MetadataOf(*picture.Origin(), *wish).exif);
    }
    return result;
}

}  // namespace tessary
