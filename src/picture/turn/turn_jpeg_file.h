// Turns a JPEG file as its picture is seen, without loss.
#pragma once

#include <windows.h>

#include <functional>
#include <optional>
#include <string>

#include "helpers/jpeg_turn/jpeg_turn.h"
#include "plugin/file_stamp.h"

namespace tessary {

struct JpegFileToTurn {
    std::wstring path{};
    std::optional<FileStamp> stamp{};  // when it was shown (StampOf)
    jpeg::TurnWish wish{};
};

struct TurnedFile {
    enum class Outcome {
        kDone,
        kRefused,     // `why` tells the reason
        kChanged,     // the file is another one than was shown; or it has gone
        kNotRead,     // it could not be read
        kNotWritten,  // `error` tells the reason
        kFailed,      // the process that turns has ended, or there is none
        kStopped,
    };
    Outcome outcome = Outcome::kFailed;
    jpeg::TurnResult why = jpeg::TurnResult::kTurned;
    // Pixels that were trimmed, or would be, at the edges of the turned picture.
    uint32_t left = 0;
    uint32_t top = 0;
    DWORD error = ERROR_SUCCESS;  // app/base/write_error.h
};

// Replaces the file by the turned one, which keeps its creation time and what protects it. All but
// kDone leaves the file as it was. The bytes, which may be anybody's, are turned in a process of
// their own (`program`, HostProgram), which ends with this. Takes its time; on any thread.
// `goesOn`, on that thread, is asked every moment until the file is about to be replaced.
TurnedFile TurnJpegFile(const JpegFileToTurn& file, const std::function<bool()>& goesOn,
                        const std::wstring& program);

}  // namespace tessary
