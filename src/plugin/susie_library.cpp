#include "plugin/susie_library.h"

#include "app/base/helper_function.h"
#include "picture/modMemory.h"

namespace tessary {
namespace {

// False when the entry is missing.
template <typename Function>
bool Find(const char* entry, Function& function) {
    function = HelperFunction<Function>(L"susiectl.dll", entry);
    return function != nullptr;
}

bool FindAll(SusieLibrary& library) {
    return Find(susiectl::kSPILoadLibraryW, library.loadLibrary) &&
           Find(susiectl::kSPIFreeLibrary, library.freeLibrary) &&
           Find(susiectl::kSPIIsInUse, library.isInUse) &&
           Find(susiectl::kSPIIsMemoryDamaged, library.isMemoryDamaged) &&
           Find(susiectl::kSPICallGuarded, library.callGuarded) &&
           Find(susiectl::kGetPluginInfo, library.getPluginInfo) &&
           Find(susiectl::kIsSupported, library.isSupported) &&
           Find(susiectl::kGetPictureInfo, library.getPictureInfo) &&
           Find(susiectl::kGetPicture, library.getPicture) &&
           Find(susiectl::kGetPreview, library.getPreview) &&
           Find(susiectl::kGetArchiveInfo, library.getArchiveInfo) &&
           Find(susiectl::kGetFileInfo, library.getFileInfo) &&
           Find(susiectl::kGetFile, library.getFile) &&
           Find(susiectl::kConfigurationDlg, library.configurationDlg) &&
           Find(susiectl::kGetLastCondition, library.getLastCondition) &&
           Find(susiectl::kOpenFrames, library.openFrames) &&
           Find(susiectl::kGetFrame, library.getFrame) &&
           Find(susiectl::kCloseFrames, library.closeFrames) &&
           Find(susiectl::kGetFileInformationW, library.getFileInformation);
}

}  // namespace

const SusieLibrary* FindSusieLibrary() {
    static SusieLibrary library;
    static const bool complete = [] {
        const bool isComplete = FindAll(library);
        if (isComplete) SetMemoryGuard(library.callGuarded);
        return isComplete;
    }();
    return complete ? &library : nullptr;
}

}  // namespace tessary
