#include "helpers/exif/exif_patch.h"

#include <algorithm>
#include <string_view>
#include <utility>

#include "helpers/exif/orientation.h"

namespace tessary::exif {
namespace {

constexpr uint16_t kTagWidth = 0x0100;
constexpr uint16_t kTagHeight = 0x0101;
constexpr uint16_t kTagPixelWidth = 0xA002;  // in the EXIF directory
constexpr uint16_t kTagPixelHeight = 0xA003;
constexpr uint16_t kTagThumbnail = 0x0201;
constexpr uint16_t kTagThumbnailSize = 0x0202;

bool IsOneOf(std::string_view characters, char character) {
    return characters.find(character) != std::string_view::npos;
}

}  // namespace

ExifPatch::ExifPatch(std::span<uint8_t> tiff)
    : bytes_(tiff), block_(tiff), isOpen_(block_.Open()) {}

std::optional<uint16_t> ExifPatch::Orientation() const {
    if (!isOpen_) return std::nullopt;
    const std::optional<Entry> entry = block_.Find(First(), kTagOrientation);
    if (!entry || entry->type != kTypeShort) return std::nullopt;
    const std::optional<uint16_t> value = block_.Short(entry->place);
    return value && IsOrientation(*value) ? value : std::nullopt;
}

bool ExifPatch::SetOrientation(uint16_t orientation) {
    if (!isOpen_) return false;
    const std::optional<Entry> entry = block_.Find(First(), kTagOrientation);
    if (!entry || entry->type != kTypeShort || !block_.Short(entry->place)) return false;
    SetShort(entry->place, orientation);
    return true;
}

void ExifPatch::SetSize(uint32_t width, uint32_t height, bool areSidesSwapped) {
    if (!isOpen_) return;
    SetNumber(First(), kTagWidth, width);
    SetNumber(First(), kTagHeight, height);
    if (const uint32_t exif = block_.DirectoryBehind(First(), kTagExif); exif != 0) {
        SetNumber(exif, kTagPixelWidth, width);
        SetNumber(exif, kTagPixelHeight, height);
    }
    if (areSidesSwapped) SwapPlaces(First(), kTagXResolution, kTagYResolution);
}

void ExifPatch::ReplaceThumbnail(
    const std::function<std::vector<uint8_t>(std::span<const uint8_t> jpeg)>& turn) {
    if (!isOpen_) return;
    const uint64_t link = block_.NextDirectory(First());
    const uint32_t second = block_.Long(link).value_or(0);
    if (second == 0) return;
    const std::optional<Entry> place = block_.Find(second, kTagThumbnail);
    const std::optional<Entry> length = block_.Find(second, kTagThumbnailSize);
    std::vector<uint8_t> turned;
    if (place && length && length->type == kTypeLong) {
        const uint64_t at = block_.Long(place->place).value_or(0);
        const uint64_t size = block_.Long(length->place).value_or(0);
        if (at + size <= bytes_.size()) {
            const auto old = bytes_.subspan(static_cast<size_t>(at), static_cast<size_t>(size));
            turned = turn(old);
            if (!turned.empty() && turned.size() <= old.size()) {
                std::ranges::copy(turned, old.begin());
                SetLong(length->place, static_cast<uint32_t>(turned.size()));
                SetNumber(second, kTagOrientation, kUpright);
                return;
            }
        }
    }
    SetLong(link, 0);
}

void ExifPatch::SetShort(uint64_t at, uint32_t value) {
    const auto high = static_cast<uint8_t>(value >> 8), low = static_cast<uint8_t>(value);
    bytes_[static_cast<size_t>(at)] = block_.IsBigEndian() ? high : low;
    bytes_[static_cast<size_t>(at) + 1] = block_.IsBigEndian() ? low : high;
}

void ExifPatch::SetLong(uint64_t at, uint32_t value) {
    SetShort(at, block_.IsBigEndian() ? value >> 16 : value & 0xFFFF);
    SetShort(at + 2, block_.IsBigEndian() ? value & 0xFFFF : value >> 16);
}

void ExifPatch::SetNumber(uint32_t directory, uint16_t tag, uint32_t value) {
    const std::optional<Entry> entry = block_.Find(directory, tag);
    if (!entry || !block_.Long(entry->place)) return;
    if (entry->type == kTypeShort) SetShort(entry->place, value);
    if (entry->type == kTypeLong) SetLong(entry->place, value);
}

void ExifPatch::SwapPlaces(uint32_t directory, uint16_t one, uint16_t other) {
    const std::optional<Entry> first = block_.Find(directory, one);
    const std::optional<Entry> second = block_.Find(directory, other);
    if (!first || !second || first->type != second->type) return;
    const auto x = block_.Long(first->place), y = block_.Long(second->place);
    if (!x || !y) return;
    SetLong(first->place, *y);
    SetLong(second->place, *x);
}

void SetXmpOrientation(std::span<uint8_t> packet, uint16_t orientation) {
    constexpr std::string_view kName = "tiff:Orientation";
    const std::string_view text(reinterpret_cast<const char*>(packet.data()), packet.size());
    for (size_t at = text.find(kName); at != std::string_view::npos; at = text.find(kName, at)) {
        at += kName.size();
        // As an attribute or an element.
        size_t digit = at;
        while (digit < text.size() && IsOneOf(" \t\r\n=\"'>", text[digit]))
            ++digit;
        const bool isNumber = digit > at && digit + 1 < text.size() && text[digit] >= '1' &&
                              text[digit] <= '8' && IsOneOf(" \"'<", text[digit + 1]);
        if (isNumber) packet[digit] = static_cast<uint8_t>('0' + orientation);
    }
}

}  // namespace tessary::exif
