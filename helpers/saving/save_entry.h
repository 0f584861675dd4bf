// What every saving entry does around its format's writer.
#pragma once

#include <windows.h>

#include <new>

#include "helpers/dib/byte_stream.h"
#include "helpers/files/file_name.h"
#include "helpers/files/replacing_file.h"
#include "helpers/saving/bytes_callback.h"
#include "helpers/saving/file_extras.h"
#include "helpers/saving/picture_at.h"
#include "helpers/saving/save_result.h"

namespace tessary::saving {

constexpr int kAllWritten = 100;  // percent

// The system's error code for an ending that is the writer's own.
inline DWORD ErrorOf(SaveResult result) {
    switch (result) {
        case SaveResult::kCancelled:
            return ERROR_CANCELLED;
        case SaveResult::kTooLarge:
            return ERROR_FILE_TOO_LARGE;
        case SaveResult::kOutOfMemory:
            return ERROR_NOT_ENOUGH_MEMORY;
        default:
            return ERROR_WRITE_FAULT;
    }
}

// What `body` answers, a system's error code; or one for what it throws, which must not leave an
// entry.
template <typename Body>
DWORD ErrorIn(const Body& body) noexcept {
    try {
        return body();
    } catch (const std::bad_alloc&) {
        return ERROR_NOT_ENOUGH_MEMORY;
    } catch (...) {
        return ERROR_INTERNAL_ERROR;
    }
}

// Hands bytes to whoever called an entry.
class CallbackSink final : public files::ByteSink {
  public:
    CallbackSink(BytesCallback take, void* to) : take_(take), to_(to) {}
    bool Write(std::span<const uint8_t> bytes) noexcept override {
        return take_(bytes.data(), bytes.size(), to_) != 0;
    }

  private:
    BytesCallback take_;
    void* to_;
};

// Has the picture at the two addresses made into the bytes of a file. `write` as below. Answers the
// system's error code, 0 for success; GetLastError tells the same. What nobody takes finds no
// memory.
template <typename Writer>
int MakeBytes(const void* info, const void* bits, BytesCallback take, void* to,
              const Writer& write) noexcept {
    const DWORD error = ErrorIn([&]() -> DWORD {
        if (take == nullptr) return ERROR_INVALID_PARAMETER;
        const PictureAt picture(info, bits);
        if (!picture.View()) return ERROR_INVALID_DATA;
        CallbackSink sink(take, to);
        const SaveResult result = write(*picture.View(), sink);
        if (result == SaveResult::kNotWritten) return ERROR_NOT_ENOUGH_MEMORY;
        return result == SaveResult::kSaved ? ERROR_SUCCESS : ErrorOf(result);
    });
    SetLastError(error);
    return static_cast<int>(error);
}

// Those that an entry was handed, which may be null.
inline files::FileDates DatesIn(const FileExtras* extras) {
    return extras != nullptr ? extras->dates : files::FileDates{};
}

// Has the picture at the two addresses written to a file, which replaces what is there; behind a
// link, the file that it leads to. `write` takes (const dib::DibView&, files::ByteSink&) and
// answers a SaveResult. `progress`, which may be empty, is asked on while a file is waited for that
// others have open. On failure the file is as it was and GetLastError tells the reason.
template <typename Char, typename Writer>
bool SaveToFile(const void* info, const void* bits, const Char* fileName,
                const dib::Progress& progress, const files::FileDates& dates,
                const Writer& write) noexcept {
    const auto save = [&]() -> DWORD {
        if (fileName == nullptr) return ERROR_INVALID_PARAMETER;
        const PictureAt picture(info, bits);
        if (!picture.View()) return ERROR_INVALID_DATA;
        files::ReplacingFile file(files::FileNameOf(fileName), files::Links::kFollow);
        if (!file.IsOpen()) return file.Error();
        file.SetDates(dates);
        const SaveResult result = write(*picture.View(), file);
        if (result != SaveResult::kSaved) {
            return file.Error() != ERROR_SUCCESS ? file.Error() : ErrorOf(result);
        }
        const auto goesOn = [&] { return !progress || progress(kAllWritten); };
        return file.Commit(files::Durability::kDisk, goesOn) ? ERROR_SUCCESS : file.Error();
    };
    const DWORD error = ErrorIn(save);
    SetLastError(error);
    return error == ERROR_SUCCESS;
}

}  // namespace tessary::saving
