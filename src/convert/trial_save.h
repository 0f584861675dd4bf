// What a picture would become, before it takes a name.
#pragma once

#include <optional>
#include <string>

#include "helpers/saving/save_options.h"
#include "picture/picture.h"
#include "plugin/private_folder.h"

namespace tessary {

// Saves a picture aside when it is first asked for.
class TrialSave {
  public:
    // The picture and the options must outlive this. `extension`: with its dot, of the format.
    TrialSave(const Picture& picture, std::wstring extension, const saving::SaveOptions& options)
        : picture_(picture), extension_(std::move(extension)), options_(options) {}

    // Whether a file has the content that the picture would be saved with.
    bool IsLike(const std::wstring& path);

  private:
    const Picture& picture_;
    std::wstring extension_;
    const saving::SaveOptions& options_;
    std::optional<PrivateFolder> folder_;
    std::wstring saved_;  // empty: it cannot be saved
};

}  // namespace tessary
