// Standard output and standard error as text.
#pragma once

#include <windows.h>

#include <string_view>

namespace tessary {

// The code page of the console that this process belongs to, which whoever reads its output
// expects: shells take it for that of pipes. UTF-8 where there is no console.
UINT ConsoleCodePage();

// Not an owner: the streams are the process's.
class ConsoleStream {
  public:
    // `stream` is STD_OUTPUT_HANDLE or STD_ERROR_HANDLE. On a console text appears as it is;
    // anywhere else it is written in `codePage`, with question marks for what that lacks.
    ConsoleStream(DWORD stream, UINT codePage);

    bool IsConsole() const { return isConsole_; }

    // What a closed stream does not take is lost.
    void Write(std::wstring_view text);
    // Adds the end of the line (CR LF).
    void WriteLine(std::wstring_view line);

  private:
    HANDLE stream_;
    UINT codePage_;
    bool isConsole_;
};

}  // namespace tessary
