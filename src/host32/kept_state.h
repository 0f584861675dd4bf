// What belongs to the whole process or its first thread, and must be for each plug-in as for the
// one before.
#pragma once

#include <windows.h>

namespace tessary {

// As it is when this begins: priorities, processors and languages. What every single call needs put
// back is susiectl.dll's.
class KeptState {
  public:
    KeptState();

    // On the same thread.
    void PutBack() const;

  private:
    DWORD class_;
    int priority_;
    DWORD_PTR processors_ = 0;  // 0: the system does not tell
    LCID locale_;
};

}  // namespace tessary
