// What a host does with every picture that a plug-in decodes: looks at all of its pixels.
#pragma once

#include <algorithm>
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
    target.enough = std::max(form.width, form.height) / 5;
    if (codec.Decode(source, target, progress) != Result::kSuccess) return;
    const auto smaller = target.View();
    if (!smaller ||
        static_cast<uint32_t>(std::max(smaller->Width(), smaller->Height())) < target.enough) {
        std::abort();
    }
    const test::Colors few(*smaller);
}

// The same with its frames, as somebody who steps back and forth.
inline void DecodeFrames(const PictureCodec& codec, std::span<const uint8_t> file) {
    dib::MemorySource source(file);
    const auto frames = codec.OpenFrames(source);
    if (frames == nullptr) return;
    const uint32_t count = frames->Frames().count;
    if (count < 2) std::abort();
    for (const uint32_t index : {0u, 1u, count - 1, 1u, std::min(count - 1, 4u), count / 2}) {
        if (index > 64) continue;  // takes its time, and nothing new comes of it
        test::MemoryTarget target(kMostBits, true);
        Progress progress;
        uint32_t duration = 0;
        if (frames->Decode(source, index, target, progress, duration) != Result::kSuccess) continue;
        if (!target.View()) std::abort();
        const test::Colors colors(*target.View());
    }
}

}  // namespace tessary::codec::fuzz
