#include "convert/trial_save.h"

#include "convert/convert_progress.h"
#include "files/same_content.h"
#include "picture/save/save_picture.h"

namespace tessary {

bool TrialSave::IsLike(const std::wstring& path) {
    if (!folder_) {
        folder_.emplace();
        const std::wstring target = folder_->Target() + L"\\picture" + extension_;
        if (SavePictureFile(picture_, target, options_,
                            reinterpret_cast<LONG_PTR>(&ConvertProgressCallback))) {
            saved_ = target;
        }
    }
    return !saved_.empty() && HaveSameContent(saved_, path);
}

}  // namespace tessary
