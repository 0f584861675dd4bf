// What a host does with every picture that a plug-in decodes: looks at all of its pixels.
#pragma once

#include <cstdlib>

#include "tests/plugins_bundled/decoded_picture.h"

namespace tessary::codec::fuzz {

// Pictures beyond this many bytes only cost time.
constexpr size_t kMostBits = 1u << 20;

inline void DecodeAll(const PictureCodec& codec, std::span<const uint8_t> file) {
    dib::MemorySource source(file);
    codec.IsSupported(file);
    PictureForm form;
    const Result formResult = codec.ReadForm(source, form);
    test::MemoryTarget target(kMostBits);
    Progress progress([](int, int) { return true; });
    if (codec.Decode(source, target, progress) != Result::kSuccess) return;
    const auto view = target.View();
    if (formResult != Result::kSuccess || !view ||
        static_cast<uint32_t>(view->Width()) != form.width ||
        static_cast<uint32_t>(view->Height()) != form.height) {
        std::abort();  // a picture has to be plain, and of the form that was told
    }
    const test::Colors colors(*view);
}

}  // namespace tessary::codec::fuzz
