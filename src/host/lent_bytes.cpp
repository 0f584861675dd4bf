#include "host/lent_bytes.h"

#include <cstring>

namespace tessary {
namespace {

// A copy of more is not left behind for the chance that it is asked for again.
constexpr size_t kMostKept = size_t{128} << 20;

bool IsSame(std::span<const uint8_t> one, std::span<const uint8_t> other) {
    return one.size() == other.size() && std::memcmp(one.data(), other.data(), one.size()) == 0;
}

}  // namespace

std::optional<LentBytes::Lent> LentBytes::Of(std::span<const uint8_t> bytes) {
    if (!section_ || !IsSame(section_->Bytes(), bytes)) {
        section_.reset();
        section_ = Section::Make(bytes.size());
        if (!section_) return std::nullopt;
        std::memcpy(section_->Bytes().data(), bytes.data(), bytes.size());
        ++id_;
    }
    return Lent{section_->Handle(), bytes.size(), bytes.size() <= kMostKept ? id_ : 0};
}

}  // namespace tessary
