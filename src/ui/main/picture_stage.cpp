#include "ui/main/picture_stage.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "app/settings/modValue.h"
#include "picture/color/convert_rows.h"
#include "ui/form/metrics.h"

namespace tessary {
namespace {

std::optional<ScrollKey> ScrollKeyOf(int keyCode) {
    switch (keyCode) {
        case VK_LEFT:
            return ScrollKey::kLeft;
        case VK_UP:
            return ScrollKey::kUp;
        case VK_RIGHT:
            return ScrollKey::kRight;
        case VK_DOWN:
            return ScrollKey::kDown;
        default:
            return std::nullopt;
    }
}

constexpr int kSquare = 8;  // of the chequerboard, in pixels at 96 dpi

bool IsSame(SIZE one, SIZE other) {
    return one.cx == other.cx && one.cy == other.cy;
}

// Where a scroll bar's code leads from `place`, of `whole` pixels of which `seen` are seen.
int ScrolledTo(int code, int place, int track, int seen, int whole) {
    switch (code) {
        case SB_LINEUP:
            return place - std::max(seen / 16, 1);
        case SB_LINEDOWN:
            return place + std::max(seen / 16, 1);
        case SB_PAGEUP:
            return place - seen * 7 / 8;
        case SB_PAGEDOWN:
            return place + seen * 7 / 8;
        case SB_THUMBTRACK:
        case SB_THUMBPOSITION:
            return track;
        case SB_TOP:
            return 0;
        case SB_BOTTOM:
            return whole;
        default:
            return place;
    }
}

}  // namespace

template <typename Change>
void PictureStage::Show(Change change) {
    const SIZE shown = sight_.Shown();
    const ViewPosition position = sight_.Position();
    change();
    if (!IsSame(shown, sight_.Shown())) EndDrag();
    ShowBars();
    if (isDrawn_ && IsSame(shown, sight_.Shown()) && position == sight_.Position()) return;
    isDrawn_ = false;
    box_.Invalidate();
    Sharpen();
    if (seen_) seen_();
}

void PictureStage::SetPicture(Picture picture, const Picture& prepared) {
    EndDrag();
    sharpener_.Forget();
    sharp_ = nullptr;
    const SIZE size = picture ? SIZE{picture.Width(), picture.Height()} : SIZE{};
    pixels_ = picture ? std::make_shared<const SightPixels>(std::move(picture)) : nullptr;
    isDrawn_ = false;
    box_.SetReason({});
    box_.Invalidate();
    Show([&] {
        sight_.SetPicture(size, keepsZoom_ && pixels_ != nullptr);
        if (prepared && !pixels_->HasAlpha() &&
            IsSame(sight_.Shown(), {prepared.Width(), prepared.Height()})) {
            const SIZE shown = sight_.Shown();
            sharp_ = SharpPart::Of({shown, {0, 0, shown.cx, shown.cy}, light_}, prepared);
        }
    });
}

void PictureStage::SetRule(const FitRule& rule) {
    Show([&] { sight_.SetRule(rule); });
}

void PictureStage::FollowRule(const FitRule& rule) {
    if (rule != sight_.Rule()) SetRule(rule);
}

void PictureStage::RoomChanged(SIZE workArea, bool bars) {
    room_.whole = box_.WholeSize();
    room_.workArea = workArea;
    const auto thickness = [&](int metric) {
        return bars ? static_cast<LONG>(GetSystemMetrics(metric)) : 0;
    };
    room_.bars = {thickness(SM_CXVSCROLL), thickness(SM_CYHSCROLL)};
    isDrawn_ = false;
    Show([&] { sight_.SetRoom(room_); });
}

// The system takes the bars out of the box's area, and tells it so.
void PictureStage::ShowBars() {
    const SIZE shown = sight_.Shown();
    box_.SetScrollBar(SB_HORZ, sight_.HasBarBelow(), shown.cx, -sight_.Position().x);
    box_.SetScrollBar(SB_VERT, sight_.HasBarBeside(), shown.cy, -sight_.Position().y);
}

void PictureStage::ZoomBySteps(int steps, std::optional<POINT> anchor) {
    const SIZE area = sight_.Area();
    if (!HasPicture()) return;
    Show([&] { sight_.ZoomBySteps(steps, anchor.value_or(POINT{area.cx / 2, area.cy / 2})); });
}

void PictureStage::ZoomBy(double factor, POINT anchor) {
    if (!HasPicture()) return;
    Show([&] { sight_.ZoomTo(sight_.Scale() * factor, anchor); });
}

void PictureStage::ToggleFit(std::optional<POINT> anchor) {
    const SIZE area = sight_.Area();
    if (!HasPicture()) return;
    Show([&] { sight_.ToggleFit(anchor.value_or(POINT{area.cx / 2, area.cy / 2})); });
}

bool PictureStage::KeyDown(int keyCode) {
    const std::optional<ScrollKey> key = ScrollKeyOf(keyCode);
    if (!key) return false;
    Show([&] { sight_.Step(*key); });
    box_.Refresh();
    return true;
}

void PictureStage::MoveTo(ViewPosition position) {
    Show([&] { sight_.MoveTo(position); });
}

// An eighth of what was seen stays in sight.
bool PictureStage::ScrollPage(bool up) {
    const ViewPosition from = sight_.Position();
    const int height = static_cast<int>(sight_.Area().cy);
    const int step = std::max(height - height / 8, 1);
    MoveTo({from.x, from.y + (up ? step : -step)});
    if (sight_.Position() == from) return false;
    box_.Refresh();
    return true;
}

void PictureStage::ScrollToBottom() {
    MoveTo({sight_.Position().x, -static_cast<int>(sight_.Shown().cy)});
}

void PictureStage::ScrollToRight() {
    MoveTo({-static_cast<int>(sight_.Shown().cx), sight_.Position().y});
}

void PictureStage::Scroll(int bar, int code, int place) {
    ViewPosition to = sight_.Position();
    if (bar == SB_HORZ) {
        to.x = -ScrolledTo(code, -to.x, place, sight_.Area().cx, sight_.Shown().cx);
    } else {
        to.y = -ScrolledTo(code, -to.y, place, sight_.Area().cy, sight_.Shown().cy);
    }
    Show([&] { sight_.MoveTo(to); });
    box_.Refresh();
}

bool PictureStage::Covers(POINT at) const {
    const RECT place = Rectangle();
    return HasPicture() && PtInRect(&place, at);
}

void PictureStage::BeginDrag(POINT at) {
    drag_ = Drag{at, sight_.Position()};
    SetCapture(box_.Handle());
}

void PictureStage::DragTo(POINT at) {
    if (!drag_) return;
    Show([&] {
        sight_.MoveTo(
            {drag_->position.x + at.x - drag_->start.x, drag_->position.y + at.y - drag_->start.y});
    });
    box_.Refresh();
}

void PictureStage::EndDrag() {
    if (!drag_) return;
    drag_.reset();  // first: releasing tells the box that the capture is lost
    // Whoever has taken the capture meanwhile keeps it.
    if (GetCapture() == box_.Handle()) ReleaseCapture();
}

RECT PictureStage::Rectangle() const {
    if (!HasPicture()) return {};
    const ViewPosition at = sight_.Position();
    return {at.x, at.y, at.x + sight_.Shown().cx, at.y + sight_.Shown().cy};
}

SightPart PictureStage::SeenPart() const {
    const RECT picture = Rectangle();
    const SIZE area = box_.AreaSize();
    const RECT box{0, 0, area.cx, area.cy};
    RECT seen{};
    IntersectRect(&seen, &picture, &box);
    OffsetRect(&seen, -picture.left, -picture.top);
    return {sight_.Shown(), IsRectEmpty(&seen) ? RECT{} : seen, light_};
}

bool PictureStage::IsUsable(const SharpPart* sharp) const {
    return sharp != nullptr && AreMadeAlike(sharp->Sight(), {sight_.Shown(), {}, light_});
}

bool PictureStage::IsSharp() const {
    if (!HasPicture() || IsExactAsItIs(sight_.Picture(), sight_.Shown())) return true;
    const SightPart seen = SeenPart();
    RECT outside{};
    return IsUsable(sharp_.get()) && !sharp_->IsDraft() &&
           !SubtractRect(&outside, &seen.part, &sharp_->Sight().part);
}

void PictureStage::Sharpen() {
    const SightPart seen = SeenPart();
    if (IsRectEmpty(&seen.part) || IsSharp()) return;
    sharpener_.Ask(pixels_, seen);
}

SightPart PictureStage::SharpWish() const {
    return HasPicture() && !IsExactAsItIs(sight_.Picture(), sight_.Shown()) ? SeenPart()
                                                                            : SightPart{};
}

void PictureStage::ShowFrame(SharpSight::Pixels pixels, std::shared_ptr<const SharpPart> sharp) {
    sharpener_.Forget();
    pixels_ = std::move(pixels);
    sharp_ = IsUsable(sharp.get()) ? std::move(sharp) : nullptr;
    isDrawn_ = false;
    box_.Invalidate(Rectangle());
    box_.Refresh();
}

void PictureStage::ShowSharp() {
    std::shared_ptr<const SharpPart> made = sharpener_.Take();
    if (!IsUsable(made.get())) return;
    sharp_ = std::move(made);
    isDrawn_ = false;
    box_.Invalidate();
    Sharpen();  // it may have moved on meanwhile
}

RECT PictureStage::Paint(HDC screen, const RECT& area) {
    const RECT picture = Rectangle();
    RECT visible{};
    if (!IntersectRect(&visible, &picture, &area)) return {};
    Draw();
    surface_.Show(screen, visible);
    return picture;
}

// What is sharp is copied, what lies around it is drawn as it comes.
void PictureStage::Draw() {
    if (isDrawn_ || !pixels_->Whole().IsThere() || !surface_.Provide(box_.AreaSize())) return;
    isDrawn_ = true;
    const SightPart seen = SeenPart();
    RECT sharp{};
    if (IsUsable(sharp_.get())) IntersectRect(&sharp, &seen.part, &sharp_->Sight().part);
    if (IsRectEmpty(&sharp)) {
        DrawNearest(seen, seen.part);
        LayOverBackdrop(seen);
        return ConvertColors(seen);
    }
    const RECT& all = seen.part;
    for (const RECT& beside : {RECT{all.left, all.top, all.right, sharp.top},
                               RECT{all.left, sharp.bottom, all.right, all.bottom},
                               RECT{all.left, sharp.top, sharp.left, sharp.bottom},
                               RECT{sharp.right, sharp.top, all.right, sharp.bottom}}) {
        if (!IsRectEmpty(&beside)) DrawNearest(seen, beside);
    }
    const ViewPosition at = sight_.Position();
    const POINT from{sharp.left - sharp_->Sight().part.left, sharp_->Sight().part.top};
    for (LONG y = sharp.top; y < sharp.bottom; ++y) {
        std::memcpy(surface_.Row(at.y + y) + at.x + sharp.left, sharp_->Row(y - from.y) + from.x,
                    static_cast<size_t>(sharp.right - sharp.left) * sizeof(uint32_t));
    }
    LayOverBackdrop(seen);
    ConvertColors(seen);
}

void PictureStage::SetLight(kernel::Light light) {
    if (light == light_) return;
    light_ = light;
    Sharpen();
    if (seen_) seen_();
}

void PictureStage::SetBackdrop(int16_t backdrop) {
    if (backdrop == backdrop_) return;
    backdrop_ = backdrop;
    isDrawn_ = false;
    box_.Invalidate();
}

// The squares move with the picture, and keep their size.
void PictureStage::LayOverBackdrop(const SightPart& seen) {
    if (!pixels_->HasAlpha()) return;
    constexpr uint32_t kColors[][2] = {
        {0xFFFFFF, 0xCCCCCC}, {0xFFFFFF, 0xFFFFFF}, {0, 0}, {0x808080, 0x808080}};
    const size_t chosen = static_cast<size_t>(std::clamp<int>(backdrop_, 0, kLastBackdrop));
    const ViewPosition at = sight_.Position();
    const PixelRows rows{surface_.Row(at.y + seen.part.top) + at.x + seen.part.left,
                         surface_.Stride()};
    LayOver(rows, {seen.Width(), seen.Height()}, {-seen.part.left, -seen.part.top},
            Metrics(box_.Handle()).Scale(kSquare), kColors[chosen]);
}

std::shared_ptr<const color::Transform> PictureStage::WayToMonitor() {
    return colors_.WayFor(box_.Handle(), pixels_->Whole().Profile(), color::Layout::kBgra8);
}

// In the colours of the picture all is drawn and kept: another monitor only has it drawn anew.
void PictureStage::ConvertColors(const SightPart& seen) {
    drawnColors_ = WayToMonitor();
    if (drawnColors_ == nullptr) return;
    const ViewPosition at = sight_.Position();
    auto* const first =
        reinterpret_cast<uint8_t*>(surface_.Row(at.y + seen.part.top) + at.x + seen.part.left);
    const auto stride = static_cast<ptrdiff_t>(surface_.Stride() * sizeof(uint32_t));
    ConvertRows(*drawnColors_, {.in = first,
                                .inStride = stride,
                                .out = first,
                                .outStride = stride,
                                .width = static_cast<uint32_t>(seen.Width()),
                                .height = static_cast<uint32_t>(seen.Height())});
}

void PictureStage::MonitorMayHaveChanged() {
    if (!HasPicture() || WayToMonitor() == drawnColors_) return;
    isDrawn_ = false;
    box_.Invalidate();
}

void PictureStage::ForgetColors() {
    colors_.Forget();
    MonitorMayHaveChanged();
}

void PictureStage::DrawNearest(const SightPart& seen, const RECT& part) {
    const ViewPosition at = sight_.Position();
    pixels_->DrawNearest({seen.shown, part},
                         {surface_.Row(at.y + part.top) + at.x + part.left, surface_.Stride()});
}

}  // namespace tessary
