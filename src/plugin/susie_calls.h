// The one way into a plug-in: loads and frees its file and calls its functions through the crash
// guard of susiectl.dll, with the call written to the call log while it is under way and crashes
// counted in the plug-in's error log.
#pragma once

#include <windows.h>

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>

#include "helpers/susiectl/susie_interface.h"
#include "picture/modMemory.h"
#include "plugin/picture_room.h"
#include "plugin/plugin_connection.h"
#include "plugin/susie_progress.h"
#include "plugin/susie_source.h"

namespace tessary {

struct SusieLibrary;

// The functions of a plug-in, in the order in which their addresses are kept.
enum class SusieFunction {
    kGetPluginInfo,
    kIsSupported,
    kGetPictureInfo,
    kGetPicture,
    kGetPreview,
    kGetArchiveInfo,
    kGetFileInfo,
    kGetFile,
    kConfigurationDlg,
    kGetLastCondition,  // not of the interface, and of few plug-ins
    kGetPictureWithAlpha,
    kGetPictureInto,
    kOpenFrames,  // the three of frames are there together or not at all
    kGetFrame,
    kCloseFrames,
};
constexpr size_t kSusieFunctionCount = 15;

// Under what names a call is logged and its failures are kept.
struct SusieCallNames {
    const wchar_t* logName;
    const wchar_t* errorKey;
    const wchar_t* errorFunction;
};

// The calls of one plug-in. None of them throws: what fails is told by the result code, the
// plug-in's own or one of kResult… (plugin_connection.h), and by TakeFault.
class SusieCalls {
  public:
    // Of the plug-in of that full path.
    explicit SusieCalls(std::wstring pluginPath) : pluginPath_(std::move(pluginPath)) {}

    // The file that the call log names beside the plug-in; empty when none is bound.
    void SetBoundFile(std::wstring path) { boundFile_ = std::move(path); }

    // Loads the plug-in file. Null when that fails; else one reference that Free gives back. A
    // crash is not counted, for no other call follows it, but is a fault.
    HMODULE Load();
    // Why the last Load was refused by the system; 0 when it was not, or nobody knows;
    // susiectl::kErrorCrashed when the plug-in crashed.
    DWORD LoadError() const { return loadError_; }
    void Free(HMODULE module);
    // Whether the plug-in shows windows of its own or runs threads.
    static bool IsInUse(HMODULE module);

    // Looks up the functions and answers the plug-in's kind; for kStyleNone the addresses are
    // cleared at once.
    int32_t BindAddresses(HMODULE module);
    // Has the plug-in not asked for what there is to tell of a call.
    void LeaveConditionOut() {
        addresses_[static_cast<size_t>(SusieFunction::kGetLastCondition)] = nullptr;
    }
    // Has the plug-in not asked for frames.
    void LeaveFramesOut();
    // Forgets all addresses but that of ConfigurationDlg.
    void ClearAddresses();
    FARPROC Address(SusieFunction function) const {
        return addresses_[static_cast<size_t>(function)];
    }

    // Not logged and not counted; -1 for an error around the call.
    int32_t GetPluginInfo(int32_t infoNumber, char* buffer, int32_t length);

    // `header`: null for a file, else the address of at least susie::kHeaderBlockSize bytes.
    int32_t IsSupported(const std::string& fileName, const void* header);

    // Without the text that a plug-in may hand out with it, and nobody reads.
    int32_t GetPictureInfo(const SusieSource& source, susie::PictureInfo& info);

    // After success the caller owns both blocks; after a failure `picture` is empty.
    int32_t GetPicture(const SusieSource& source, PicturePair& picture,
                       const ProgressRelay& progress);
    // The same into room that the plug-in asks for, which it must be able to (Address). `wishes`:
    // bits of susie::RoomWish; `enough`: as the record has it. `filled`: what it was given last;
    // nothing after a failure, and when it has not asked.
    int32_t GetPictureInto(const SusieSource& source, const RoomMaker& rooms, uint32_t wishes,
                           uint32_t enough, std::optional<RoomForPicture>& filled,
                           const ProgressRelay& progress);
    // `list` and `frames` are empty but after success. What is in `frames` then is to be closed,
    // unless it is null; the source's bytes must stay so long.
    int32_t OpenFrames(const SusieSource& source, susie::FrameList& list, void*& frames);
    // As GetPictureInto. `duration`: 0 but after success.
    int32_t GetFrame(void* frames, uint32_t index, const RoomMaker& rooms,
                     std::optional<RoomForPicture>& filled, uint32_t& duration,
                     const ProgressRelay& progress);
    int32_t CloseFrames(void* frames);
    // Calls whatever function the caller names under the name of GetPreview.
    int32_t GetPreview(FARPROC function, const SusieSource& source, PicturePair& picture,
                       const ProgressRelay& progress);

    // After success the caller owns the block of susie::FileInfo records. Some plug-ins answer an
    // error and hand one out all the same: what is there then is a block, and for the caller to
    // free with FreeLeftHandle or, if it turns out to be a list, to own.
    int32_t GetArchiveInfo(const SusieSource& archive, HLOCAL& members);
    int32_t GetFileInfo(const SusieSource& archive, const std::string& memberName,
                        susie::FileInfo& info);

    // GetFile by its source (M: memory, S: name of a file) and destination (M: a block that the
    // caller owns after success, S: an existing folder). `position` is the member's.
    int32_t GetFileMM(const void* archive, LONG_PTR position, HLOCAL& member,
                      const ProgressRelay& progress);
    int32_t GetFileSM(const std::string& archive, LONG_PTR position, HLOCAL& member,
                      const ProgressRelay& progress);
    int32_t GetFileMS(const void* archive, LONG_PTR position, const std::string& folder,
                      const ProgressRelay& progress);
    int32_t GetFileSS(const std::string& archive, LONG_PTR position, const std::string& folder,
                      const ProgressRelay& progress);

    // Opens the plug-in's settings window.
    int32_t ConfigurationDlg(HWND parent);

    // What the plug-in has told of its last call of GetPicture, GetPreview, GetFrame,
    // GetArchiveInfo, GetFileInfo or GetFile. When that call failed, its text is the fault's
    // message too.
    const PluginCondition& Condition() const { return condition_; }

    // The last error since this was asked last; empty when there was none.
    PluginFault TakeFault() { return std::exchange(fault_, {}); }

  private:
    template <typename Call>
    int32_t Guarded(const SusieCallNames& names, Call&& call);
    template <typename Call>
    int32_t GuardedAndTold(const SusieCallNames& names, Call&& call);
    void NoteDamage(const SusieCallNames& names);
    template <typename Call>
    void Logged(const SusieCallNames& names, Call&& call);
    void AskForCondition(const SusieLibrary& library);
    int32_t Mapped(int32_t result, const SusieCallNames& names);
    void SetFault(std::wstring_view message, const SusieCallNames& names);
    int32_t GetFileToMemory(const SusieCallNames& names, const SusieSource& archive, HLOCAL& member,
                            const ProgressRelay& progress);
    int32_t GetFileToFolder(const SusieCallNames& names, const SusieSource& archive,
                            const std::string& folder, const ProgressRelay& progress);

    std::wstring pluginPath_;
    std::wstring boundFile_;
    std::array<FARPROC, kSusieFunctionCount> addresses_{};
    PluginCondition condition_;
    PluginFault fault_;
    DWORD loadError_ = ERROR_SUCCESS;
};

}  // namespace tessary
