// The entries of susiectl.dll with their types, found once.
#pragma once

#include "helpers/susiectl/susiectl.h"

namespace tessary {

struct SusieLibrary {
    susiectl::SPILoadLibraryWFunction loadLibrary;
    susiectl::SPIFreeLibraryFunction freeLibrary;
    susiectl::SPIIsInUseFunction isInUse;
    susiectl::SPIIsMemoryDamagedFunction isMemoryDamaged;
    susiectl::SPICallGuardedFunction callGuarded;
    susiectl::GetPluginInfoEntry getPluginInfo;
    susiectl::IsSupportedEntry isSupported;
    susiectl::GetPictureInfoEntry getPictureInfo;
    susiectl::GetPictureEntry getPicture;
    susiectl::GetPictureEntry getPreview;
    susiectl::GetArchiveInfoEntry getArchiveInfo;
    susiectl::GetFileInfoEntry getFileInfo;
    susiectl::GetFileEntry getFile;
    susiectl::ConfigurationDlgEntry configurationDlg;
    susiectl::GetLastConditionEntry getLastCondition;
    susiectl::OpenFramesEntry openFrames;
    susiectl::GetFrameEntry getFrame;
    susiectl::CloseFramesEntry closeFrames;
    susiectl::GetFileInformationWFunction getFileInformation;
};

// The copy in the application folder, which stays loaded; null when it or one of its entries is
// missing. From then on it guards what is done with plug-ins' blocks (SetMemoryGuard).
const SusieLibrary* FindSusieLibrary();

}  // namespace tessary
