#include "picture/current_picture.h"

namespace tessary {
namespace {

PicturePair& Current() {
    static PicturePair picture;
    return picture;
}

}  // namespace

const PicturePair& CurrentPicture() {
    return Current();
}

void SetCurrentPicture(PicturePair picture) {
    FreePicture(Current());
    Current() = picture;
}

}  // namespace tessary
