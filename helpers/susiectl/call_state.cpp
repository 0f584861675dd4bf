#include "helpers/susiectl/call_state.h"

namespace tessary::susiectl {
namespace {

// Empty when the system cannot tell.
std::wstring CurrentFolder() {
    std::wstring folder(MAX_PATH, L'\0');
    DWORD length = GetCurrentDirectoryW(MAX_PATH, folder.data());
    if (length >= MAX_PATH) {  // then it is the size that is needed
        folder.resize(length);
        length = GetCurrentDirectoryW(length, folder.data());
    }
    folder.resize(length);
    return folder;
}

}  // namespace

CallState::CallState()
    : folder_(CurrentFolder()),
      processErrorMode_(GetErrorMode()),
      threadErrorMode_(GetThreadErrorMode()) {
    SetThreadErrorMode(SEM_FAILCRITICALERRORS | SEM_NOGPFAULTERRORBOX | SEM_NOOPENFILEERRORBOX,
                       nullptr);
}

CallState::~CallState() {
    SetErrorMode(processErrorMode_);
    SetThreadErrorMode(threadErrorMode_, nullptr);
    try {
        if (!folder_.empty() && CurrentFolder() != folder_) SetCurrentDirectoryW(folder_.c_str());
    } catch (const std::bad_alloc&) {
        SetCurrentDirectoryW(folder_.c_str());
    }
}

}  // namespace tessary::susiectl
