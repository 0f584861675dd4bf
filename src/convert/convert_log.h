// The conversion log: on the screen always, in a file when the user wants it.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "app/settings/modValue.h"
#include "convert/convert_monitor.h"
#include "convert/numbered_files.h"

namespace tessary {

// A list that holds more loses its first line before the next is added.
constexpr size_t kMostLogLines = 1000;

// Whether a file of that name could be one: it is not empty, and names no folder or pattern.
bool IsLogName(const std::wstring& name);
// The full path: the name counts from the program's folder, unless it is a full path already.
std::wstring LogPath(const std::wstring& name);

// Why the log file that the settings want must not be written, for the user: it is one of the files
// to convert, or there is something there that is no text, such as a picture. Empty: nothing is
// lost by writing it, or none is wanted.
std::wstring LogRefusal(std::span<const ConvertSource> files, const ConvertSettings& settings);

class ConvertLog {
  public:
    // The monitor must outlive the log.
    explicit ConvertLog(ConvertMonitor& monitor) : monitor_(monitor) {}

    // Opens the log file of the settings if they want one. One that cannot be opened is told of;
    // so is one that takes no more lines later, which is left as it is.
    void Open(const ConvertSettings& settings);
    void Close();

    // Why the file could not be opened, as the system's error; 0: it could, or none is wanted.
    uint32_t Refusal() const { return refusal_; }
    // Why it could not be opened or not be written to its end; 0: nothing is amiss.
    uint32_t Error() const { return error_; }

    // Adds a line: `indent` blanks and the label, as many blanks as it lacks to 24 columns when all
    // its characters count as two, then the value. So labels of full-width characters stand in
    // columns in the file, which is text of the system's code page.
    void WriteConvertLog(std::wstring_view label, std::wstring_view value, int16_t indent);

    // The line of nothing but blanks between two files.
    void WriteSeparator() { WriteConvertLog({}, {}, 0); }

  private:
    void ShowLine(const std::wstring& line);
    // Tells that the file is not written, or no more.
    void GiveUp(const wchar_t* what, uint32_t error);

    ConvertMonitor& monitor_;
    NumberedFiles files_;
    int16_t fileNumber_ = 0;
    uint32_t refusal_ = 0;
    uint32_t error_ = 0;
};

}  // namespace tessary
