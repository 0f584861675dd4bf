// A picture as the file that it is saved as, in memory: it can be made before the file has a name,
// and on any thread.
#pragma once

#include <windows.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "app/settings/saver_format.h"
#include "helpers/saving/save_options.h"
#include "picture/picture.h"

namespace tessary {

// The bytes of a file that grew piece by piece, without a block for all of them.
class FileBytes {
  public:
    // Throws std::bad_alloc.
    void Append(std::span<const uint8_t> bytes);

    size_t Size() const { return size_; }
    const std::vector<std::vector<uint8_t>>& Pieces() const { return pieces_; }

  private:
    std::vector<std::vector<uint8_t>> pieces_;
    size_t size_ = 0;
};

struct EncodedPicture {
    // Of the picture that it was.
    int32_t width = 0;
    int32_t height = 0;
    uint16_t bitCount = 0;
    FileBytes bytes{};
    files::FileDates dates{};  // for the file
};

// What SavePictureFile would write in that format. Null when it cannot be made. `passThrough`: as
// there.
std::shared_ptr<const EncodedPicture> EncodePicture(const Picture& picture,
                                                    const SaverFormat& format,
                                                    const saving::SaveOptions& options,
                                                    LONG_PTR passThrough);

// Writes it as SavePictureFile does. False when nothing was saved; GetLastError tells why.
bool SaveEncoded(const EncodedPicture& picture, const std::wstring& fileName, LONG_PTR passThrough);

}  // namespace tessary
