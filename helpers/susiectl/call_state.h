// What belongs to the whole process or thread, and plug-ins change.
#pragma once

#include <windows.h>

#include <string>

namespace tessary::susiectl {

// Remembers the current folder and the error modes, silences the system's message boxes, and puts
// everything back at its end.
class CallState {
  public:
    CallState();
    ~CallState();
    CallState(const CallState&) = delete;
    CallState& operator=(const CallState&) = delete;

  private:
    std::wstring folder_;
    UINT processErrorMode_;
    DWORD threadErrorMode_;
};

}  // namespace tessary::susiectl
