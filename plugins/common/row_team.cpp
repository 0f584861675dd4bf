#include "plugins/common/row_team.h"

#include <algorithm>
#include <exception>
#include <utility>

namespace tessary::codec {
namespace {

// As many rows as become runs of 64 neighbouring pixels in the shown picture's rows when they
// become columns, unless they are very long.
constexpr uint32_t kMostBandRows = 64;
constexpr size_t kBandSize = 2u << 20;

// Smaller pictures are done before a thread has started.
constexpr uint64_t kLeastForThreads = 1u << 18;  // pixels
constexpr unsigned kMostThreads = 8;

// An odd number of cache lines, so that the rows of a column do not fight for one cache set.
size_t BandStride(size_t rowBytes) {
    return ((rowBytes + 63) / 64 | 1) * 64;
}

unsigned ThreadsFor(const RowPlaces& places) {
    if (uint64_t{places.Width()} * places.Height() < kLeastForThreads) return 0;
    return std::clamp(std::thread::hardware_concurrency(), 1u, kMostThreads) - 1;
}

}  // namespace

RowTeam::RowTeam(const RowPlaces& places, RowConversion conversion)
    : places_(places),
      conversion_(std::move(conversion)),
      storedStride_(BandStride(size_t{places.Width()} * conversion_.storedBytes)),
      shownStride_(BandStride(places.RowBytes())),
      bandRows_(std::clamp(static_cast<uint32_t>(kBandSize / storedStride_), 1u,
                           std::min(kMostBandRows, places.Height()))) {
    // No more than there are bands: of a picture of a few long rows each is large.
    const uint32_t bands = (places.Height() + bandRows_ - 1) / bandRows_;
    const unsigned threads = std::min(ThreadsFor(places), bands - 1);
    ring_.resize(threads == 0 ? 1 : std::min(threads + 4, bands));
    isDone_.resize(ring_.size());
    for (Band& band : ring_)
        band.rows.resize(storedStride_ * bandRows_);
    scratches_.resize(threads + 1);
    for (Scratch& scratch : scratches_) {
        if (places_.SwapsSides()) scratch.resize(shownStride_ * bandRows_);
    }
    StartThreads();
}

RowTeam::~RowTeam() {
    const Lock lock(mutex_);
    stops_ = true;
    changed_.notify_all();
}

void RowTeam::StartThreads() {
    try {
        threads_.reserve(scratches_.size());
        for (size_t i = 1; i < scratches_.size(); ++i) {
            threads_.emplace_back([this, &scratch = scratches_[i]] { Work(scratch); });
        }
    } catch (const std::exception&) {
        // Then fewer do it.
    }
}

uint8_t* RowTeam::RowBuffer(uint32_t y) {
    const uint32_t inBand = y % bandRows_;
    if (inBand == 0) {
        Lock lock(mutex_);
        while (filled_ - done_ == ring_.size()) {
            if (begun_ < filled_) {
                ConvertNext(scratches_.front(), lock);
            } else {
                changed_.wait(lock);
            }
        }
    }
    return Current().rows.data() + inBand * storedStride_;
}

void RowTeam::RowDone(uint32_t y) {
    const uint32_t inBand = y % bandRows_;
    if (inBand + 1 != bandRows_ && y + 1 != places_.Height()) return;
    Band& band = Current();
    band.first = y - inBand;
    band.count = inBand + 1;
    const Lock lock(mutex_);
    ++filled_;
    changed_.notify_all();
}

void RowTeam::Finish() {
    Lock lock(mutex_);
    while (done_ < filled_) {
        if (begun_ < filled_) {
            ConvertNext(scratches_.front(), lock);
        } else {
            changed_.wait(lock);
        }
    }
}

void RowTeam::Work(Scratch& scratch) noexcept {
    Lock lock(mutex_);
    for (;;) {
        changed_.wait(lock, [this] { return stops_ || begun_ < filled_; });
        if (stops_) return;
        ConvertNext(scratch, lock);
    }
}

void RowTeam::ConvertNext(Scratch& scratch, Lock& lock) noexcept {
    const size_t place = begun_++ % ring_.size();
    lock.unlock();
    Convert(ring_[place], scratch);
    lock.lock();
    isDone_[place] = true;
    while (done_ < begun_ && isDone_[done_ % ring_.size()])
        isDone_[done_++ % ring_.size()] = false;
    changed_.notify_all();
}

void RowTeam::Convert(const Band& band, Scratch& scratch) const noexcept {
    for (uint32_t i = 0; i < band.count; ++i) {
        const uint8_t* stored = band.rows.data() + i * storedStride_;
        if (places_.SwapsSides()) {
            conversion_.convert(stored, scratch.data() + i * shownStride_);
            continue;
        }
        uint8_t* row = places_.RowOf(band.first + i);
        conversion_.convert(stored, row);
        places_.FinishRow(row);
    }
    if (places_.SwapsSides()) {
        places_.PutColumns(band.first, band.count, scratch.data(), shownStride_);
    }
}

}  // namespace tessary::codec
