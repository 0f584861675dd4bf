// The images of the control bar's buttons.
#pragma once

#include "ui/form/vector_image.h"

namespace tessary {

// Numbered as the toolbar counts its images.
enum class ToolbarImage {
    kRewind = 1,
    kReversePlay,
    kStepBack,
    kStop,
    kStepForward,
    kPlay,
    kFastForward,
    kOriginalSize,
    kSmallSize,
    kMediumSize,
    kLargeSize,
    kScreenSize,
    kOpen,
    kSave,
    kAddToDeleteList,
    kCancelDelete,
    kFold,    // the bar is unfolded
    kUnfold,  // the bar is folded
    kWindowSize,
    kWidthSize,
    kPauseFrames,
    kPlayFrames,
};
constexpr int kToolbarImageCount = static_cast<int>(ToolbarImage::kPlayFrames);

// The image of a display size mode, 0 to 6.
constexpr ToolbarImage SizeModeImage(int mode) {
    constexpr int kFixedModes = 5;
    if (mode >= kFixedModes) {
        return static_cast<ToolbarImage>(static_cast<int>(ToolbarImage::kWindowSize) + mode -
                                         kFixedModes);
    }
    return static_cast<ToolbarImage>(static_cast<int>(ToolbarImage::kOriginalSize) + mode);
}

ArgbImage DrawToolbarImage(ToolbarImage image, const ImageLook& look);

}  // namespace tessary
