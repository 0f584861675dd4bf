#include "picture/current_picture.h"

#include <utility>

namespace tessary {
namespace {

Picture& Current() {
    static Picture picture;
    return picture;
}

std::wstring& Damage() {
    static std::wstring damage;
    return damage;
}

}  // namespace

const Picture& CurrentPicture() {
    if (!Current().IsThere()) SetCurrentPicture({});
    return Current();
}

const std::wstring& CurrentPictureDamage() {
    return Damage();
}

void SetCurrentPicture(Picture picture, std::wstring damage) {
    Current() = std::move(picture);
    Damage() = std::move(damage);
}

}  // namespace tessary
