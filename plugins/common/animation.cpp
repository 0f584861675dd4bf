#include "plugins/common/animation.h"

#include <algorithm>

namespace tessary::codec {
namespace {

constexpr size_t kKeptBytes = size_t{48} << 20;
constexpr size_t kMostKept = 16;

}  // namespace

Result Animation::Decode(dib::ByteSource& source, uint32_t index, PictureTarget& target,
                         Progress& progress, uint32_t& duration) {
    duration = FrameAt(index).duration;
    if (shown_ != index && IsAlone(index) && HandOutAlone(source, index, target)) {
        return progress.Report(1, 1) ? Result::kSuccess : Result::kAborted;
    }
    if (shown_ != index) {
        const Result result = Show(source, index, progress);
        if (result != Result::kSuccess) return result;
    }
    const Result result = canvas_.HandOut(target, source.Size());
    if (result != Result::kSuccess) return result;
    return progress.Report(1, 1) ? Result::kSuccess : Result::kAborted;
}

Result Animation::Show(dib::ByteSource& source, uint32_t index, Progress& progress) {
    uint32_t first = index;
    while (first != 0 && shown_ != first - 1 && !kept_.contains(first) && !IsStart(first))
        --first;
    GoTo(first);
    for (uint32_t i = first; i <= index; ++i) {
        if (!progress.Report(i - first, uint64_t{index} - first + 1)) return Result::kAborted;
        Progress nobody;  // what frames before lack is not this one's damage
        const Result result = Step(source, i, i == index ? progress : nobody);
        if (result != Result::kSuccess) return result;
    }
    return Result::kSuccess;
}

Result Animation::Step(dib::ByteSource& source, uint32_t index, Progress& progress) {
    Dispose();
    Keep(index);
    const Frame frame = FrameAt(index);
    if (frame.disposal == Disposal::kPutBack) under_ = canvas_.Kept(canvas_.Visible(frame.place));
    const Result result = Draw(source, index, canvas_, progress);
    if (result == Result::kSuccess) shown_ = index;
    return result;
}

bool Animation::IsWhole(const FramePlace& place) const {
    return place.left == 0 && place.top == 0 && place.width >= width_ && place.height >= height_;
}

// Whether nothing of the frames before is left when it is drawn, nor comes back later.
bool Animation::IsStart(uint32_t index) const {
    const Frame frame = FrameAt(index);
    const Frame before = FrameAt(index - 1);
    return (frame.isSolid && frame.disposal != Disposal::kPutBack && IsWhole(frame.place)) ||
           (before.disposal == Disposal::kClear && IsWhole(before.place));
}

// Whether it neither needs the canvas nor leaves anything on it.
bool Animation::IsAlone(uint32_t index) const {
    const Frame frame = FrameAt(index);
    return frame.isSolid && IsWhole(frame.place) &&
           (index + 1 == Frames().count || IsStart(index + 1));
}

void Animation::GoTo(uint32_t index) {
    if (canvas_.Width() == 0) canvas_ = Canvas(width_, height_);
    if (shown_ && *shown_ + 1 == index) return;
    shown_.reset();
    const auto kept = kept_.find(index);
    if (kept != kept_.end()) {
        canvas_ = kept->second;
    } else {
        canvas_.Clear({0, 0, width_, height_});
    }
}

void Animation::Dispose() {
    if (!shown_) return;
    const Frame frame = FrameAt(*shown_);
    const FramePlace visible = canvas_.Visible(frame.place);
    if (frame.disposal == Disposal::kClear) canvas_.Clear(visible);
    if (frame.disposal == Disposal::kPutBack) canvas_.PutBack(visible, under_);
    shown_.reset();
}

void Animation::Keep(uint32_t index) {
    const size_t most = std::min(kMostKept, kKeptBytes / canvas_.Size());
    if (most == 0 || index == 0 || index % keptEvery_ != 0 || IsStart(index)) return;
    if (kept_.size() == most && !kept_.contains(index)) {
        keptEvery_ *= 2;
        std::erase_if(kept_, [&](const auto& kept) { return kept.first % keptEvery_ != 0; });
        if (kept_.size() == most || index % keptEvery_ != 0) return;
    }
    kept_.try_emplace(index, canvas_);
}

}  // namespace tessary::codec
