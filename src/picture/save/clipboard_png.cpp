#include "picture/save/clipboard_png.h"

#include "app/base/helper_function.h"
#include "helpers/dcpng/dcpng.h"

namespace tessary {
namespace {

constexpr saving::PngSaveOptions kQuickPng = {.quality = 1, .interlace = 0};

}  // namespace

UniqueGlobal MakeClipboardPNG(const Picture& picture) {
    const auto make =
        HelperFunction<dcpng::MakePNGBlockFunction>(L"dcpng.dll", dcpng::kMakePNGBlockName);
    HGLOBAL block = nullptr;
    if (make == nullptr || !picture ||
        make(picture.Info().data(), picture.Bits().data(), &kQuickPng, &block) != 0) {
        return {};
    }
    return UniqueGlobal(block);
}

}  // namespace tessary
