// The one way into a plug-in: loads and frees its file and calls its functions through the crash
// guard of susiectl.dll, with the call written to the call log while it is under way and crashes
// counted in the plug-in's error log.
#pragma once

#include <windows.h>

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

#include "helpers/susiectl/susie_interface.h"
#include "picture/modMemory.h"
#include "plugin/crashed_calls.h"
#include "plugin/plugin_condition.h"
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
};
constexpr size_t kSusieFunctionCount = 11;

// What a plug-in is good for, as its exports tell.
constexpr int32_t kStylePicture = 0;
constexpr int32_t kStyleArchive = 1;
constexpr int32_t kStyleNone = 255;

// Whether a plug-in is being called at the moment. Plug-ins handle window messages while they work
// (in message boxes, progress callbacks, settings windows), so that the user can ask for more
// meanwhile: nothing that a call may be using must be changed then, and no other call be made.
bool PluginCallUnderWay();

// The error of a plug-in that has crashed in a call.
inline constexpr wchar_t kPluginCrashedText[] = L"SPIファイル内の関数で致命的エラーが発生しました";

// Whether a plug-in has crashed since the program began.
bool HasPluginCrashed();

// Whether a plug-in's crash has damaged the program's memory, or may have. No plug-in is called any
// more then, loaded or freed: whatever it allocated might crash, and be blamed for it. It stays so
// until the program is started anew, which PluginsStoppedText tells the user.
bool PluginsAreStopped();
// The sentence for the user, with the name of the plug-in that was being called then.
std::wstring PluginsStoppedText();

// Results of a call beside the plug-in's own (susie::Result and others).
constexpr int32_t kResultUnexpected = 20;   // an error of ours around the call
constexpr int32_t kResultNotExported = 21;  // the plug-in does not have the function
constexpr int32_t kResultStopped = 22;      // the plug-in was not called: PluginsAreStopped
constexpr int32_t kResultCrashed = 255;     // the plug-in crashed and was caught

// Under what names a call is logged and its failures are kept.
struct SusieCallNames {
    const wchar_t* logName;
    const wchar_t* errorKey;
    const wchar_t* errorFunction;
};

// The calls of one plug-in. None of them throws: what fails is told by the result code, and by
// ErrorString and ErrorFunction. A call that has crashed is not made again for the same content: it
// is answered kResultCrashed, and not counted.
class SusieCalls {
  public:
    // The plug-in's full path; empty when none is set.
    const std::wstring& PluginPath() const { return pluginPath_; }
    void SetPluginPath(std::wstring path) { pluginPath_ = std::move(path); }

    // The file that the call log names beside the plug-in; empty when none is bound.
    void SetBoundFile(std::wstring path) { boundFile_ = std::move(path); }

    // Loads the plug-in file. Null when that fails; else one reference that Free gives back. A
    // crash is not counted, for no other call follows it, but is the last error.
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

    // After success the caller owns both blocks; after a failure `picture` is empty. `progress`
    // must not be null: some plug-ins call it unasked.
    int32_t GetPicture(const SusieSource& source, PicturePair& picture,
                       susie::ProgressCallback progress);
    // Calls whatever function the caller names under the name of GetPreview.
    int32_t GetPreview(FARPROC function, const SusieSource& source, PicturePair& picture,
                       susie::ProgressCallback progress);

    // After success the caller owns the block of susie::FileInfo records. Some plug-ins answer an
    // error and hand one out all the same: what is there then is a block, and for the caller to
    // free with FreeLeftHandle or, if it turns out to be a list, to own.
    int32_t GetArchiveInfo(const SusieSource& archive, HLOCAL& members);
    int32_t GetFileInfo(const SusieSource& archive, const std::string& memberName,
                        susie::FileInfo& info);

    // GetFile by its source (M: memory, S: name of a file) and destination (M: a block that the
    // caller owns after success, S: an existing folder). `position` is the member's.
    int32_t GetFileMM(const void* archive, LONG_PTR position, HLOCAL& member,
                      susie::ProgressCallback progress);
    int32_t GetFileSM(const std::string& archive, LONG_PTR position, HLOCAL& member,
                      susie::ProgressCallback progress);
    int32_t GetFileMS(const void* archive, LONG_PTR position, const std::string& folder,
                      susie::ProgressCallback progress);
    int32_t GetFileSS(const std::string& archive, LONG_PTR position, const std::string& folder,
                      susie::ProgressCallback progress);

    // Opens the plug-in's settings window.
    int32_t ConfigurationDlg(HWND parent);

    // What the plug-in has told of its last call of GetPicture, GetPreview, GetArchiveInfo,
    // GetFileInfo or GetFile. When that call failed, its text is the last error's message too.
    const PluginCondition& Condition() const { return condition_; }
    void ForgetCondition() { condition_ = {}; }

    // The last error's message, and the function that it happened in.
    const std::wstring& ErrorString() const { return errorString_; }
    const std::wstring& ErrorFunction() const { return errorFunction_; }
    void SetError(std::wstring_view message, std::wstring_view function);

    // Gives calls that have crashed another chance.
    void ForgetCrashes() { crashed_.Clear(); }

    // How many errors were set so far: tells whether a stretch of code has set one.
    uint32_t ErrorSerial() const { return errorSerial_; }

  private:
    template <typename Call>
    int32_t Guarded(const SusieCallNames& names, Call&& call);
    template <typename Call>
    int32_t GuardedAndTold(const SusieCallNames& names, Call&& call);
    // `call` of that function, unless it has crashed over the source before. Sources without an
    // address cannot be told apart.
    template <typename Call>
    int32_t UnlessCrashed(const wchar_t* function, const SusieSource& source, Call&& call);
    void NoteDamage(const SusieCallNames& names);
    template <typename Call>
    void Logged(const SusieCallNames& names, Call&& call);
    void AskForCondition(const SusieLibrary& library);
    int32_t Mapped(int32_t result, const SusieCallNames& names);
    int32_t GetFileToMemory(const SusieCallNames& names, const SusieSource& archive, HLOCAL& member,
                            susie::ProgressCallback progress);
    int32_t GetFileToFolder(const SusieCallNames& names, const SusieSource& archive,
                            const std::string& folder, susie::ProgressCallback progress);

    std::wstring pluginPath_;
    std::wstring boundFile_;
    std::array<FARPROC, kSusieFunctionCount> addresses_{};
    PluginCondition condition_;
    CrashedCalls crashed_;
    std::wstring errorString_;
    std::wstring errorFunction_;
    uint32_t errorSerial_ = 0;
    DWORD loadError_ = ERROR_SUCCESS;
};

}  // namespace tessary
