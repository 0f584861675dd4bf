// What the conversion engine needs of whoever watches it: the converter dialog, the console front
// end, a test.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "convert/file_report.h"

namespace tessary {

// A file that is to be converted.
struct ConvertSource {
    std::wstring path;       // full path
    std::wstring root = {};  // the folder that it was found under, with the folders that stand
                             // between; empty: it was chosen by itself
};

// A picture would take a name that is in use.
struct ConflictQuestion {
    std::wstring source;  // full path of the file that is being converted
    std::wstring target;  // of the file that is there
    bool mayReplace;      // false: it belongs to this run, as a source or as a result
};
enum class ConflictAnswer { kFreeName, kReplace, kSkip, kStop };

class ConvertMonitor {
  public:
    // The files to convert, in order. Asked for once, at the beginning.
    virtual std::vector<ConvertSource> ConvertFileList() = 0;

    // The list of log lines on the screen. The engine keeps it short (kMostLogLines); one that
    // flows by answers 0. Adding puts a line at the end and into view.
    virtual size_t LogLineCount() = 0;
    virtual void RemoveFirstLogLine() = 0;
    virtual void AddLogLine(const std::wstring& line) = 0;

    // Lets the message loop run once; called after each line.
    virtual void Breathe() = 0;

    // How far the run is (`totalPosition` of `totalMaximum`; a maximum below 0 changes nothing) and
    // how far the file at hand (a maximum of 0 or less changes nothing). Called often: about a
    // hundred times, in some plug-ins as often as a picture has rows, for each file. False once the
    // user has asked to stop.
    virtual bool SetProgressBar(int32_t totalPosition, int32_t totalMaximum, int32_t filePosition,
                                int32_t fileMaximum) = 0;

    // What to do about a name in use, with kConflictAsk. kReplace where that may not be counts as
    // kFreeName; kStop skips this file and is to be answered by SetProgressBar from then on.
    virtual ConflictAnswer AskConflict(const ConflictQuestion&) {
        return ConflictAnswer::kFreeName;
    }

    // What became of a file, as soon as that is known.
    virtual void FileDone(const FileReport&) {}

  protected:
    ~ConvertMonitor() = default;
};

}  // namespace tessary
