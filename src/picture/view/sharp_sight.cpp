#include "picture/view/sharp_sight.h"

#include <algorithm>
#include <cstring>
#include <system_error>
#include <utility>

#include "picture/view/picture_kernel.h"

namespace tessary {
namespace {

// Between two strips of so many rows the thread asks whether they are still wanted.
constexpr LONG kStripRows = 360;

bool DrawAll(const Picture& made, const PixelRows& rows) {
    if (!made) return false;
    SightPixels(made.Another())
        .DrawNearest({{made.Width(), made.Height()}, {0, 0, made.Width(), made.Height()}}, rows);
    return true;
}

// Of pixels with alpha, each for itself: a strip of a picture may be clear all over.
bool DrawClear(const Picture& made, const PixelRows& rows) {
    if (!made || made.View().Format() != dib::PixelFormat::kBgra32) return false;
    for (int32_t y = 0; y < made.Height(); ++y) {
        const uint8_t* pixel = made.View().Row(y).data();
        uint32_t* const row = rows.Row(y);
        for (int32_t x = 0; x < made.Width(); ++x, pixel += 4) {
            const uint32_t alpha = pixel[3];
            const auto part = [&](size_t i) { return (pixel[i] * alpha + 127) / 255; };
            row[x] = part(0) | part(1) << 8 | part(2) << 16 | alpha << 24;
        }
    }
    return true;
}

// What shows through is what black and white make a difference to.
void TakeAlpha(const Picture& overWhite, const PixelRows& overBlack) {
    const dib::DibView& white = overWhite.View();
    for (int32_t y = 0; y < white.Height(); ++y) {
        const uint8_t* bgr = white.Row(y).data();
        uint32_t* const row = overBlack.Row(y);
        for (int32_t x = 0; x < white.Width(); ++x, bgr += 3) {
            const int through = bgr[1] - static_cast<int>(row[x] >> 8 & 255);
            row[x] = (row[x] & 0xFFFFFF) | static_cast<uint32_t>(std::clamp(255 - through, 0, 255))
                                               << 24;
        }
    }
}

bool MakeStrip(const SightPixels& pixels, const SightPart& strip, const PixelRows& rows) {
    const auto made = [&](dib::Backdrop backdrop) {
        return ResizePicturePart(pixels.Whole(), strip.shown, strip.part, backdrop, strip.light);
    };
    if (!pixels.HasAlpha()) return DrawAll(made(dib::Backdrop::kWhite), rows);
    if (strip.light == kernel::Light::kLinear) return DrawClear(made(dib::Backdrop::kWhite), rows);
    const Picture overWhite = made(dib::Backdrop::kWhite);
    if (!overWhite || !DrawAll(made(dib::Backdrop::kBlack), rows)) return false;
    TakeAlpha(overWhite, rows);
    return true;
}

}  // namespace

std::shared_ptr<const SharpPart> MakeSharpPart(const SightPixels& pixels, const SightPart& sight,
                                               const std::function<bool()>& isWanted) {
    auto whole = std::make_shared<SharpPart>(sight);
    const RECT& part = sight.part;
    for (LONG top = part.top; top < part.bottom; top += kStripRows) {
        if (!isWanted()) return nullptr;
        const RECT strip{part.left, top, part.right, std::min(top + kStripRows, part.bottom)};
        const PixelRows rows = whole->Rows();
        if (!MakeStrip(pixels, {sight.shown, strip, sight.light},
                       {rows.Row(top - part.top), rows.stride})) {
            return nullptr;
        }
    }
    return whole;
}

SharpSight::~SharpSight() {
    Forget();
}

void SharpSight::Ask(Pixels pixels, const SightPart& sight) {
    const std::lock_guard lock(mutex_);
    if (making_ != pixels || !AreMadeAlike(makingSight_, sight)) making_ = nullptr;
    wish_ = Wish{std::move(pixels), sight};
    asked_.notify_one();
    if (thread_.joinable()) return;
    try {
        thread_ = std::jthread([this](const std::stop_token& ends) { Run(ends); });
    } catch (const std::system_error&) {
        // No thread to be had: it stays as it is on the screen until the next wish.
    }
}

void SharpSight::Forget() {
    const std::lock_guard lock(mutex_);
    wish_.reset();
    making_ = nullptr;
    made_ = nullptr;
}

std::shared_ptr<const SharpPart> SharpSight::Take() {
    const std::lock_guard lock(mutex_);
    return std::exchange(made_, nullptr);
}

void SharpSight::Run(const std::stop_token& ends) {
    for (;;) {
        Wish wish;
        {
            std::unique_lock lock(mutex_);
            if (!asked_.wait(lock, ends, [this] { return wish_.has_value(); })) return;
            wish = *std::exchange(wish_, std::nullopt);
            making_ = wish.pixels;
            makingSight_ = wish.sight;
        }
        std::shared_ptr<const SharpPart> made;
        try {
            made = MakeSharpPart(*wish.pixels, wish.sight,
                                 [&] { return !ends.stop_requested() && IsWanted(wish); });
        } catch (const std::bad_alloc&) {
            // It stays as it is on the screen.
        }
        {
            const std::lock_guard lock(mutex_);
            if (made == nullptr || making_ != wish.pixels) continue;
            making_ = nullptr;
            made_ = std::move(made);
        }
        ready_();
    }
}

bool SharpSight::IsWanted(const Wish& wish) {
    const std::lock_guard lock(mutex_);
    return making_ == wish.pixels;
}

}  // namespace tessary
