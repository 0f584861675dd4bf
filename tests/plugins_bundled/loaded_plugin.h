// A finished plug-in of the application folder, called as a host calls it.
#pragma once

#include <windows.h>

#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "helpers/susiectl/susie_interface.h"
#include "tests/plugins_bundled/decoded_picture.h"
#include "tests/support/loaded_library.h"

namespace tessary::spi::test {

using codec::test::Bytes;
using codec::test::Colors;

struct LoadedModule {
    explicit LoadedModule(const std::string& name)
        : library(std::wstring(name.begin(), name.end()) + L".spi") {}

    tessary::test::LoadedLibrary library;
    susie::GetPluginInfoFunction getPluginInfo = library["GetPluginInfo"];
    susie::IsSupportedFunction isSupported = library["IsSupported"];
    susie::GetLastConditionFunction getLastCondition = library["GetLastCondition"];
};

struct LoadedPlugin : LoadedModule {
    using LoadedModule::LoadedModule;

    susie::GetPictureInfoFunction getPictureInfo = library["GetPictureInfo"];
    susie::GetPictureFunction getPicture = library["GetPicture"];
    susie::GetPictureFunction getPictureWithAlpha = library["GetPictureWithAlpha"];
    susie::GetPictureIntoFunction getPictureInto = library["GetPictureInto"];
    susie::GetPictureFunction getPreview = library["GetPreview"];
};

struct LoadedArchivePlugin : LoadedModule {
    using LoadedModule::LoadedModule;

    susie::GetArchiveInfoFunction getArchiveInfo = library["GetArchiveInfo"];
    susie::GetFileInfoFunction getFileInfo = library["GetFileInfo"];
    susie::GetFileFunction getFile = library["GetFile"];
};

// One call of GetPicture, and what it hands over.
class HandedPicture {
  public:
    HandedPicture(const LoadedPlugin& plugin, const void* source, size_t length, uint32_t flag,
                  susie::ProgressCallback progress = nullptr)
        : result(plugin.getPicture(static_cast<const char*>(source), static_cast<LONG_PTR>(length),
                                   flag, &info, &bits, progress, 0)) {}
    HandedPicture(const LoadedPlugin& plugin, const Bytes& file)
        : HandedPicture(plugin, file.data(), file.size(), susie::kSourceMemory) {}
    ~HandedPicture() {
        LocalFree(info);
        LocalFree(bits);
    }
    HandedPicture(const HandedPicture&) = delete;
    HandedPicture& operator=(const HandedPicture&) = delete;

    dib::BitmapInfoHeader Header() const {
        dib::BitmapInfoHeader header{};
        if (info != nullptr) std::memcpy(&header, LocalLock(info), sizeof header);
        LocalUnlock(info);
        return header;
    }
    Colors Pixels() const {
        const std::span infoBytes(static_cast<uint8_t*>(LocalLock(info)), LocalSize(info));
        const std::span bitsBytes(static_cast<uint8_t*>(LocalLock(bits)), LocalSize(bits));
        return Colors(dib::DibView::Of(infoBytes, bitsBytes).value());
    }

    HLOCAL info = nullptr;
    HLOCAL bits = nullptr;
    const int result;
};

}  // namespace tessary::spi::test
