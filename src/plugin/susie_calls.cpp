#include "plugin/susie_calls.h"

#include <utility>

#include "app/base/error.h"
#include "app/base/paths.h"
#include "plugin/asked_room.h"
#include "plugin/call_log.h"
#include "plugin/call_scope.h"
#include "plugin/host_state.h"
#include "plugin/plugin_state.h"
#include "plugin/susie_library.h"
#include "plugin/thread_crash.h"
#include "plugin/unaware_of_resolution.h"

namespace tessary {
namespace {

constexpr wchar_t kNotExportedText[] = L"呼び出そうとした関数はSPIファイルでサポートされていません";
constexpr wchar_t kUnexpectedText[] =
    L"SPI内部の関数呼び出し時に予期されていないエラーが発生しました";

// The error keys "GetPrevew" and, for ConfigurationDlg, "GetFileSS" are what users' stores hold:
// a tidier name would lose the counts.
constexpr SusieCallNames kLoadLibrary{L"LoadLibrary", nullptr, L"LoadLibrary"};
constexpr SusieCallNames kFreeLibrary{L"FreeLibrary", nullptr, L"FreeLibrary"};
constexpr SusieCallNames kGetPluginInfo{L"GetPluginInfo", nullptr, L"GetPlugInInfo"};
constexpr SusieCallNames kIsSupported{L"IsSupported", L"IsSupported", L"IsSupported"};
constexpr SusieCallNames kGetPictureInfo{L"GetPictureInfo", L"GetPictureInfo", L"GetPictureInfo"};
constexpr SusieCallNames kGetPicture{L"GetPicture", L"GetPicture", L"GetPicture"};
constexpr SusieCallNames kGetPreview{L"GetPreview", L"GetPrevew", L"GetPreview"};
constexpr SusieCallNames kGetArchiveInfo{L"GetArchiveInfo", L"GetArchiveInfo", L"GetArchiveInfo"};
constexpr SusieCallNames kGetFileInfo{L"GetFileInfo", L"GetFileInfo", L"GetFileInfo"};
constexpr SusieCallNames kGetFileMM{L"GetFileMM", L"GetFileMM", L"GetFile"};
constexpr SusieCallNames kGetFileSM{L"GetFileSM", L"GetFileSM", L"GetFile"};
constexpr SusieCallNames kGetFileMS{L"GetFileMS", L"GetFileMS", L"GetFile"};
constexpr SusieCallNames kGetFileSS{L"GetFileSS", L"GetFileSS", L"GetFile"};
constexpr SusieCallNames kConfigurationDlg{L"ConfigurationDlg", L"GetFileSS", L"ConfigurationDlg"};
constexpr SusieCallNames kGetLastCondition{nullptr, L"GetLastCondition", L"GetLastCondition"};
constexpr SusieCallNames kOpenFrames{L"OpenFrames", L"OpenFrames", L"OpenFrames"};
constexpr SusieCallNames kGetFrame{L"GetFrame", L"GetFrame", L"GetFrame"};
constexpr SusieCallNames kCloseFrames{L"CloseFrames", L"CloseFrames", L"CloseFrames"};

// UTF-16 units that a plug-in has for what it tells.
constexpr size_t kConditionTextSize = 256;

// Exported names in the order of SusieFunction.
constexpr const char* kExportedNames[kSusieFunctionCount] = {
    "GetPluginInfo",    "IsSupported",      "GetPictureInfo",      "GetPicture",
    "GetPreview",       "GetArchiveInfo",   "GetFileInfo",         "GetFile",
    "ConfigurationDlg", "GetLastCondition", "GetPictureWithAlpha", "GetPictureInto",
    "OpenFrames",       "GetFrame",         "CloseFrames",
};

void FreeLeft(HLOCAL& handle) {
    if (!PluginsAreStopped()) FreeLeftHandle(handle);
    handle = nullptr;
}

// What a call has answered, with what it has handed out: after success blocks or null, else null.
int32_t Received(int32_t answer, HLOCAL& handle) {
    if (answer != susie::kSuccess) FreeLeft(handle);
    return TakeForeignHandle(handle) ? answer : susiectl::kCrashed;
}

int32_t Received(int32_t answer, PicturePair& picture) {
    if (answer != susie::kSuccess && picture.bits == picture.info) picture.bits = nullptr;
    const int32_t result = Received(Received(answer, picture.info), picture.bits);
    if (result != susie::kSuccess) FreeLeft(picture.info);
    return result;
}

const SusieLibrary& Library() {
    const SusieLibrary* const library = FindSusieLibrary();
    if (library == nullptr) throw RaisedError(kErrorInternal, kUnexpectedText);
    return *library;
}

}  // namespace

// To be called behind each call: whoever was called when the damage showed has to answer for it.
void SusieCalls::NoteDamage(const SusieCallNames& names) {
    if (!PluginsAreStopped() || !Host().damager.empty()) return;
    Trapped([&] { Host().damager = FileNameOf(pluginPath_); });
    // The other crashes are counted as such.
    if (names.errorKey == nullptr) {
        Trapped([&] { CountFailure({names.logName, pluginPath_, boundFile_}); });
    }
    Trapped([&] { NoteDamagingCall({names.logName, pluginPath_, boundFile_}); });
}

// Keeps the call log for the time of a call.
template <typename Call>
void SusieCalls::Logged(const SusieCallNames& names, Call&& call) {
    try {
        WriteCallLog({names.logName, pluginPath_, boundFile_});
        {
            const CallScope scope;
            call(Library());
        }
        NoteDamage(names);
        if (PluginsAreStopped()) {
            KeepCallLog();
        } else {
            ClearCallLog();
        }
    } catch (...) {
        ClearCallLog();
        SetFault(kUnexpectedText, names);
        throw;
    }
}

template <typename Call>
int32_t SusieCalls::Guarded(const SusieCallNames& names, Call&& call) {
    return Trapped(kResultUnexpected, [&] {
        int32_t result = kResultUnexpected;
        if (PluginsAreStopped()) {
            SetFault(PluginsStoppedText(), names);
            return kResultStopped;
        }
        Logged(names, [&](const SusieLibrary& library) { result = call(library); });
        return Mapped(result, names);
    });
}

// A call that is followed by the question what there is to tell of it, under the same note in the
// call log.
template <typename Call>
int32_t SusieCalls::GuardedAndTold(const SusieCallNames& names, Call&& call) {
    condition_ = {};
    const int32_t result = Guarded(names, [&](const SusieLibrary& library) {
        const int32_t answer = call(library);
        if (answer != susiectl::kCrashed) AskForCondition(library);
        return answer;
    });
    if (result != susie::kSuccess && condition_.kind != susie::kConditionNone) {
        SetFault(condition_.text, names);
    }
    return result;
}

void SusieCalls::AskForCondition(const SusieLibrary& library) {
    const FARPROC function = Address(SusieFunction::kGetLastCondition);
    if (function == nullptr) return;
    Trapped([&] {
        std::array<wchar_t, kConditionTextSize> text{};
        const int32_t answer = library.getLastCondition(function, text.data(), kConditionTextSize);
        condition_ = ConditionOf(answer, {text.data(), text.size()});
        if (answer != susiectl::kCrashed) return;
        // The call itself stands, and the question is not asked again.
        Mapped(answer, kGetLastCondition);
        LeaveConditionOut();
    });
}

int32_t SusieCalls::Mapped(int32_t result, const SusieCallNames& names) {
    if (result == susiectl::kCrashed) {
        Host().hasPluginCrashed = true;
        if (names.errorKey != nullptr) {
            Trapped([&] { CountFailure({names.errorKey, pluginPath_, boundFile_}); });
        }
        SetFault(kPluginCrashedText, names);
        return kResultCrashed;
    }
    if (result == susiectl::kNotExported) {
        SetFault(kNotExportedText, names);
        return kResultNotExported;
    }
    return result;
}

void SusieCalls::SetFault(std::wstring_view message, const SusieCallNames& names) {
    fault_ = {std::wstring(message), names.errorFunction};
}

HMODULE SusieCalls::Load() {
    loadError_ = ERROR_SUCCESS;
    if (PluginsAreStopped()) return nullptr;
    return Trapped(HMODULE{}, [&] {
        HMODULE module = nullptr;
        Logged(kLoadLibrary, [&](const SusieLibrary& library) {
            module = library.loadLibrary(pluginPath_.c_str());
            if (module == nullptr) loadError_ = GetLastError();
        });
        if (loadError_ == susiectl::kErrorCrashed) Mapped(susiectl::kCrashed, kLoadLibrary);
        if (module != nullptr) WatchThreadsOf(module, pluginPath_);
        return module;
    });
}

void SusieCalls::Free(HMODULE module) {
    if (PluginsAreStopped()) return;
    Trapped([&] {
        Logged(kFreeLibrary, [&](const SusieLibrary& library) { library.freeLibrary(module); });
    });
}

bool SusieCalls::IsInUse(HMODULE module) {
    return Trapped(false, [&] { return Library().isInUse(module) != 0; });
}

int32_t SusieCalls::BindAddresses(HMODULE module) {
    for (size_t i = 0; i < kSusieFunctionCount; ++i) {
        addresses_[i] = GetProcAddress(module, kExportedNames[i]);
    }
    const auto has = [&](SusieFunction function) { return Address(function) != nullptr; };
    if (!has(SusieFunction::kOpenFrames) || !has(SusieFunction::kGetFrame) ||
        !has(SusieFunction::kCloseFrames)) {
        LeaveFramesOut();
    }
    if (has(SusieFunction::kGetPluginInfo) && has(SusieFunction::kIsSupported)) {
        if (has(SusieFunction::kGetPicture)) return kStylePicture;
        if (has(SusieFunction::kGetArchiveInfo) && has(SusieFunction::kGetFile) &&
            has(SusieFunction::kGetFileInfo)) {
            return kStyleArchive;
        }
    }
    ClearAddresses();
    return kStyleNone;
}

void SusieCalls::LeaveFramesOut() {
    addresses_[static_cast<size_t>(SusieFunction::kOpenFrames)] = nullptr;
}

void SusieCalls::ClearAddresses() {
    const FARPROC configurationDlg = Address(SusieFunction::kConfigurationDlg);
    addresses_.fill(nullptr);
    addresses_[static_cast<size_t>(SusieFunction::kConfigurationDlg)] = configurationDlg;
}

int32_t SusieCalls::GetPluginInfo(int32_t infoNumber, char* buffer, int32_t length) {
    if (PluginsAreStopped()) return -1;
    try {
        const CallScope scope;
        const int32_t result = Library().getPluginInfo(Address(SusieFunction::kGetPluginInfo),
                                                       infoNumber, buffer, length);
        NoteDamage(kGetPluginInfo);
        return Mapped(result, kGetPluginInfo);
    } catch (...) {
        SetFault(kUnexpectedText, kGetPluginInfo);
        return -1;
    }
}

int32_t SusieCalls::IsSupported(const std::string& fileName, const void* header) {
    return Guarded(kIsSupported, [&](const SusieLibrary& library) {
        return library.isSupported(Address(SusieFunction::kIsSupported), fileName.c_str(), header);
    });
}

int32_t SusieCalls::GetPictureInfo(const SusieSource& source, susie::PictureInfo& info) {
    info = {};
    return Guarded(kGetPictureInfo, [&](const SusieLibrary& library) {
        const int32_t answer =
            library.getPictureInfo(Address(SusieFunction::kGetPictureInfo), source.source,
                                   source.length, source.flag, &info);
        HLOCAL text = std::exchange(info.hInfo, nullptr);  // which nobody reads
        const int32_t received = Received(answer, text);
        FreeLocalHandle(text);
        return received;
    });
}

int32_t SusieCalls::GetPicture(const SusieSource& source, PicturePair& picture,
                               const ProgressRelay& progress) {
    picture = {};
    const FARPROC withAlpha = Address(SusieFunction::kGetPictureWithAlpha);
    const FARPROC function = withAlpha ? withAlpha : Address(SusieFunction::kGetPicture);
    return GuardedAndTold(kGetPicture, [&](const SusieLibrary& library) {
        return Received(
            library.getPicture(function, source.source, source.length, source.flag, &picture.info,
                               &picture.bits, progress.Callback(), progress.UserData()),
            picture);
    });
}

// susiectl.dll passes the two addresses on as they are.
int32_t SusieCalls::GetPictureInto(const SusieSource& source, const RoomMaker& rooms,
                                   uint32_t wishes, uint32_t enough,
                                   std::optional<RoomForPicture>& filled,
                                   const ProgressRelay& progress) {
    AskedRoom room(rooms, wishes, enough);
    const int32_t code = GuardedAndTold(kGetPicture, [&](const SusieLibrary& library) {
        return library.getPicture(
            Address(SusieFunction::kGetPictureInto), source.source, source.length, source.flag,
            reinterpret_cast<HLOCAL*>(static_cast<susie::PictureRoom*>(&room)), nullptr,
            progress.Callback(), progress.UserData());
    });
    filled = code == susie::kSuccess ? room.taken : std::nullopt;
    return code;
}

int32_t SusieCalls::OpenFrames(const SusieSource& source, susie::FrameList& list, void*& frames) {
    list = {};
    frames = nullptr;
    susie::FrameList told{sizeof(told), 0, 0, 0};
    void* opened = nullptr;
    const int32_t code = Guarded(kOpenFrames, [&](const SusieLibrary& library) {
        return library.openFrames(Address(SusieFunction::kOpenFrames), source.source, source.length,
                                  source.flag, &told, &opened);
    });
    if (code != susie::kSuccess) return code;
    list = told;
    frames = opened;
    return code;
}

int32_t SusieCalls::GetFrame(void* frames, uint32_t index, const RoomMaker& rooms,
                             std::optional<RoomForPicture>& filled, uint32_t& duration,
                             const ProgressRelay& progress) {
    AskedRoom room(rooms, 0);
    uint32_t told = 0;
    const int32_t code = GuardedAndTold(kGetFrame, [&](const SusieLibrary& library) {
        return library.getFrame(Address(SusieFunction::kGetFrame), frames, index, &told, &room,
                                progress.Callback(), progress.UserData());
    });
    const bool hasSucceeded = code == susie::kSuccess;
    filled = hasSucceeded ? room.taken : std::nullopt;
    duration = hasSucceeded ? told : 0;
    return code;
}

int32_t SusieCalls::CloseFrames(void* frames) {
    return Guarded(kCloseFrames, [&](const SusieLibrary& library) {
        return library.closeFrames(Address(SusieFunction::kCloseFrames), frames);
    });
}

int32_t SusieCalls::GetPreview(FARPROC function, const SusieSource& source, PicturePair& picture,
                               const ProgressRelay& progress) {
    picture = {};
    return GuardedAndTold(kGetPreview, [&](const SusieLibrary& library) {
        return Received(
            library.getPreview(function, source.source, source.length, source.flag, &picture.info,
                               &picture.bits, progress.Callback(), progress.UserData()),
            picture);
    });
}

int32_t SusieCalls::GetArchiveInfo(const SusieSource& archive, HLOCAL& members) {
    members = nullptr;
    return GuardedAndTold(kGetArchiveInfo, [&](const SusieLibrary& library) {
        const int32_t answer =
            library.getArchiveInfo(Address(SusieFunction::kGetArchiveInfo), archive.source,
                                   archive.length, archive.flag, &members);
        // What a call has left that failed may be the list all the same.
        if (answer == susiectl::kCrashed) return Received(answer, members);
        return TakeForeignHandle(members) ? answer : susiectl::kCrashed;
    });
}

int32_t SusieCalls::GetFileInfo(const SusieSource& archive, const std::string& memberName,
                                susie::FileInfo& info) {
    info = {};
    return GuardedAndTold(kGetFileInfo, [&](const SusieLibrary& library) {
        return library.getFileInfo(Address(SusieFunction::kGetFileInfo), archive.source,
                                   archive.length, memberName.c_str(), archive.flag, &info);
    });
}

int32_t SusieCalls::GetFileMM(const void* archive, LONG_PTR position, HLOCAL& member,
                              const ProgressRelay& progress) {
    return GetFileToMemory(kGetFileMM,
                           {static_cast<const char*>(archive), position, susie::kSourceMemory},
                           member, progress);
}

int32_t SusieCalls::GetFileSM(const std::string& archive, LONG_PTR position, HLOCAL& member,
                              const ProgressRelay& progress) {
    return GetFileToMemory(kGetFileSM, {archive.c_str(), position, susie::kSourceFile}, member,
                           progress);
}

int32_t SusieCalls::GetFileMS(const void* archive, LONG_PTR position, const std::string& folder,
                              const ProgressRelay& progress) {
    return GetFileToFolder(kGetFileMS,
                           {static_cast<const char*>(archive), position, susie::kSourceMemory},
                           folder, progress);
}

int32_t SusieCalls::GetFileSS(const std::string& archive, LONG_PTR position,
                              const std::string& folder, const ProgressRelay& progress) {
    return GetFileToFolder(kGetFileSS, {archive.c_str(), position, susie::kSourceFile}, folder,
                           progress);
}

int32_t SusieCalls::GetFileToMemory(const SusieCallNames& names, const SusieSource& archive,
                                    HLOCAL& member, const ProgressRelay& progress) {
    member = nullptr;
    return GuardedAndTold(names, [&](const SusieLibrary& library) {
        const int32_t answer = library.getFile(Address(SusieFunction::kGetFile), archive.source,
                                               archive.length, reinterpret_cast<char*>(&member),
                                               archive.flag | susie::kDestinationMemory,
                                               progress.Callback(), progress.UserData());
        return Received(answer, member);
    });
}

int32_t SusieCalls::GetFileToFolder(const SusieCallNames& names, const SusieSource& archive,
                                    const std::string& folder, const ProgressRelay& progress) {
    return GuardedAndTold(names, [&](const SusieLibrary& library) {
        // A copy with room behind it: plug-ins append the separator and the member's name in place.
        std::string destination = folder;
        destination.resize(folder.size() + 2 * MAX_PATH);
        return library.getFile(Address(SusieFunction::kGetFile), archive.source, archive.length,
                               destination.data(), archive.flag | susie::kDestinationFile,
                               progress.Callback(), progress.UserData());
    });
}

int32_t SusieCalls::ConfigurationDlg(HWND parent) {
    return Guarded(kConfigurationDlg, [&](const SusieLibrary& library) {
        const UnawareOfResolution scaled;
        return library.configurationDlg(Address(SusieFunction::kConfigurationDlg), parent,
                                        susie::kConfigurationSettings);
    });
}

}  // namespace tessary
