#include "picture/current_picture.h"

#include <utility>

namespace tessary {
namespace {

PicturePair& Current() {
    static PicturePair picture;
    return picture;
}

std::wstring& Damage() {
    static std::wstring damage;
    return damage;
}

}  // namespace

const PicturePair& CurrentPicture() {
    return Current();
}

const std::wstring& CurrentPictureDamage() {
    return Damage();
}

void SetCurrentPicture(PicturePair picture, std::wstring damage) {
    FreePicture(Current());
    Current() = picture;
    Damage() = std::move(damage);
}

}  // namespace tessary
