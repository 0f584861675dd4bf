// What the numbers of a picture mean: an ICC profile, or what a file says in other words. Little
// CMS stays behind this face and the one of color_transform.h.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace tessary::color {

enum class Model : uint8_t { kGrey, kRgb, kCmyk };

// Larger profiles count as damaged: the largest of printing presses have 3 MB.
constexpr size_t kLargestProfile = 4u << 20;

// Whether everybody will take these bytes for a profile of the model, also those who are strict:
// the header tells their true size, and all tags lie within. For profiles that are to be handed on.
bool IsWellFormed(std::span<const uint8_t> icc, Model model);

// A point of the CIE 1931 diagram.
struct Chromaticity {
    double x = 0, y = 0;
};

struct Primaries {
    Chromaticity white, red, green, blue;
};

constexpr Primaries kSrgbPrimaries{{0.3127, 0.3290}, {0.64, 0.33}, {0.30, 0.60}, {0.15, 0.06}};

// How samples become light.
struct Curve {
    double gamma = 1;     // light is the sample to this power
    bool isSrgb = false;  // instead: as sRGB has it
};

// Owns an opened profile. Moved, or shared with the transforms made from it; never changed.
class Profile {
  public:
    // Null unless these are the bytes of a profile that describes pixels of a device or of a colour
    // space, of one of the three models. Whether all of its tables make sense shows when a
    // transform is made from it.
    static std::optional<Profile> FromIcc(std::span<const uint8_t> icc);
    static Profile Srgb();
    // Null for values that no colour space has.
    static std::optional<Profile> FromPrimaries(const Primaries& primaries, Curve curve);
    static std::optional<Profile> FromGreyCurve(Curve curve);
    static Profile AdobeRgb();

    Model ModelOf() const { return model_; }
    // The bytes that it was made from; empty where it was made in another way.
    std::span<const uint8_t> Source() const {
        return source_ ? std::span<const uint8_t>(*source_) : std::span<const uint8_t>();
    }
    // What it calls itself, in Japanese where it can; empty when it does not tell.
    std::u16string Name() const;
    // The profile as a file has it, of the version 4; the same bytes of the same colours whenever
    // it is made. Empty when there is no memory.
    std::vector<uint8_t> Icc() const;

    // cmsHPROFILE, for this folder's own use.
    void* Handle() const { return handle_.get(); }

  private:
    Profile(void* handle, Model model);

    std::shared_ptr<void> handle_;
    std::shared_ptr<const std::vector<uint8_t>> source_;
    Model model_;
};

}  // namespace tessary::color
