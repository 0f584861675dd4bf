#include "plugins/iftesswic/container.h"

#include <algorithm>
#include <array>
#include <string_view>

#include "plugins/iftesswic/icon_directory.h"

namespace tessary::wic {
namespace {

using namespace std::string_view_literals;

// Major brands of still pictures and picture sequences (ISO/IEC 23008-12, AVIF 1.0).
constexpr std::array kHeifBrands{"heic"sv, "heix"sv, "heim"sv, "heis"sv, "hevc"sv,
                                 "hevx"sv, "mif1"sv, "msf1"sv, "avif"sv, "avis"sv};

bool HasBytes(std::span<const uint8_t> header, size_t offset, std::string_view bytes) {
    return header.size() >= offset + bytes.size() &&
           std::equal(bytes.begin(), bytes.end(), header.begin() + static_cast<ptrdiff_t>(offset),
                      [](char a, uint8_t b) { return static_cast<uint8_t>(a) == b; });
}

}  // namespace

Container DetectContainer(std::span<const uint8_t> header) {
    if (HasBytes(header, 0, "II*\0"sv) || HasBytes(header, 0, "MM\0*"sv)) return Container::kTiff;
    if (HasBytes(header, 0, "II\xBC"sv)) return Container::kJpegXr;
    if (HasBytes(header, 0, "DDS \x7C\0\0\0"sv)) return Container::kDds;
    if (HasBytes(header, 4, "ftyp"sv)) {
        const bool known = std::any_of(kHeifBrands.begin(), kHeifBrands.end(),
                                       [&](auto brand) { return HasBytes(header, 8, brand); });
        return known ? Container::kHeif : Container::kUnknown;
    }
    if (HasBytes(header, 0, "\0\0\1\0"sv) && IsIconDirectory(header)) return Container::kIcon;
    if (HasBytes(header, 0, "\0\0\2\0"sv) && IsIconDirectory(header)) return Container::kCursor;
    return Container::kUnknown;
}

}  // namespace tessary::wic
