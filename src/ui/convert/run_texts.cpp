#include "ui/convert/run_texts.h"

namespace tessary {
namespace {

// What has been measured for a shorter time says little about the rest.
constexpr uint64_t kLeastMeasured = 2000;  // milliseconds

std::wstring TwoDigits(uint64_t number) {
    return (number < 10 ? L"0" : L"") + std::to_wstring(number);
}

// As h:mm:ss, or m:ss within the first hour.
std::wstring DurationText(uint64_t milliseconds) {
    const uint64_t seconds = milliseconds / 1000;
    const uint64_t minutes = seconds / 60;
    const std::wstring rest = L":" + TwoDigits(seconds % 60);
    if (minutes < 60) return std::to_wstring(minutes) + rest;
    return std::to_wstring(minutes / 60) + L":" + TwoDigits(minutes % 60) + rest;
}

}  // namespace

std::wstring RunTimeText(uint64_t elapsedMilliseconds, int32_t position, int32_t maximum) {
    std::wstring text = L"経過 " + DurationText(elapsedMilliseconds);
    if (position > 0 && position < maximum && elapsedMilliseconds >= kLeastMeasured) {
        const auto rest = static_cast<uint64_t>(maximum - position);
        text += L"、残り約 " +
                DurationText(elapsedMilliseconds * rest / static_cast<uint64_t>(position));
    }
    return text;
}

}  // namespace tessary
