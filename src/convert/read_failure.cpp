#include "convert/read_failure.h"

#include <windows.h>

#include "app/base/handles.h"
#include "app/base/paths.h"
#include "plugin/modSusie.h"

namespace tessary {
namespace {

// The reason that a plug-in itself tells of; kNone when it tells nothing.
FileReason ReasonTold(susie::Condition condition) {
    switch (condition) {
        case susie::kConditionPasswordNeeded:
        case susie::kConditionDirectoryEncrypted:
            return FileReason::kPassword;
        case susie::kConditionVolumeMissing:
            return FileReason::kVolumeMissing;
        case susie::kConditionKindNotRead:
            return FileReason::kKindNotRead;
        case susie::kConditionDamaged:
            return FileReason::kBrokenData;
        default:
            return FileReason::kNone;
    }
}

// Of one whose last error that was.
FileReason ReasonOfCrash(const std::wstring& lastError) {
    return lastError == kPluginSilentText ? FileReason::kPluginSilent : FileReason::kPluginCrashed;
}

std::wstring WithPlugin(const std::wstring& lastError, const std::wstring& plugin) {
    const bool isSilent = lastError == kPluginSilentText;
    return (isSilent ? ReasonText(FileReason::kPluginSilent) : lastError) + L" (" +
           SusieCollection().NameOf(plugin) + L')';
}

}  // namespace

FileReason ReasonOf(const Search::Refusal& refusal) {
    if (refusal.hasCrashed) return ReasonOfCrash(refusal.reason);
    const FileReason told = ReasonTold(refusal.condition);
    return told == FileReason::kNone ? FileReason::kPluginFailed : told;
}

FileReason ReasonOf(const PluginFailure& failure) {
    switch (static_cast<int32_t>(failure.result)) {
        case susie::kOutOfMemory:
        case susie::kMemoryError:
            return FileReason::kOutOfMemory;
        case susie::kReadError:
            return FileReason::kUnreadable;
        case kResultCrashed:
            return ReasonOfCrash(failure.lastError);
        default:
            break;
    }
    if (const FileReason told = ReasonTold(failure.condition); told != FileReason::kNone)
        return told;
    return failure.result == susie::kBrokenData ? FileReason::kBrokenData
                                                : FileReason::kPluginFailed;
}

std::wstring FailureText(const PluginFailure& failure, const std::wstring& pluginKey) {
    return WithPlugin(failure.lastError, pluginKey);
}

std::wstring FailureText(const Search::Refusal& refusal) {
    return WithPlugin(refusal.reason, refusal.dllName);
}

FileReason ReasonUnknown(const std::wstring& path) {
    const UniqueFile file(CreateFileW(ExtendedPath(path).c_str(), GENERIC_READ,
                                      FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                                      nullptr, OPEN_EXISTING, 0, nullptr));
    if (!file) return ReasonOfReadError(GetLastError());
    LARGE_INTEGER size{};
    if (GetFileSizeEx(file.Get(), &size) && size.QuadPart == 0) return FileReason::kEmptyFile;
    return SusieCollection().Count() == 0 ? FileReason::kNoPlugin : FileReason::kUnknownFormat;
}

}  // namespace tessary
