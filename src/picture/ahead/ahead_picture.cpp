#include "picture/ahead/ahead_picture.h"

namespace tessary {

ReadResult AnotherOf(const ReadResult& read) {
    return {.kind = read.kind,
            .picture = read.picture.Another(),
            .plugin = read.plugin,
            .milliseconds = read.milliseconds,
            .frames = read.frames,
            .page = read.page,
            .damage = read.damage};
}

AheadPicture AheadPicture::Another() const {
    return {.entry = entry,
            .stamp = stamp,
            .read = AnotherOf(read),
            .memberDamage = memberDamage,
            .prepared = prepared.Another(),
            .made = made};
}

size_t AheadPicture::Size() const {
    const auto sizeOf = [](const Picture& picture) {
        return picture ? picture.Info().size() + picture.Bits().size() : 0;
    };
    return sizeOf(read.picture) + sizeOf(prepared) + (made ? made->bytes.Size() : 0);
}

}  // namespace tessary
