// A finished plug-in of the application folder, called as a host calls it.
#pragma once

#include <windows.h>

#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "helpers/susiectl/susie_interface.h"
#include "tests/plugins_bundled/decoded_picture.h"
#include "tests/support/loaded_library.h"
#include "tests/support/temporary_folder.h"

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

    // Of this version of the interface; how many texts it has: patterns and names in turn.
    int CountTexts(const std::string& version) const {
        char text[256];
        getPluginInfo(0, text, sizeof text);
        EXPECT_EQ(text, version);
        int number = 2;
        for (; getPluginInfo(number, text, sizeof text) > 0; ++number)
            EXPECT_EQ(number % 2 == 0, std::string(text).starts_with("*.")) << text;
        return number;
    }
};

// The path of a new file.
inline std::string Written(const tessary::test::TemporaryFolder& folder, const Bytes& bytes,
                           const std::wstring& name = L"file") {
    const std::wstring path =
        folder.Write(name, {reinterpret_cast<const char*>(bytes.data()), bytes.size()});
    return {path.begin(), path.end()};
}

struct LoadedPlugin : LoadedModule {
    using LoadedModule::LoadedModule;

    susie::GetPictureInfoFunction getPictureInfo = library["GetPictureInfo"];
    susie::GetPictureFunction getPicture = library["GetPicture"];
    susie::GetPictureFunction getPictureWithAlpha = library["GetPictureWithAlpha"];
    susie::GetPictureIntoFunction getPictureInto = library["GetPictureInto"];
    susie::GetPictureFunction getPreview = library["GetPreview"];
};

// One that has the entries of frames, too.
struct LoadedFramesPlugin : LoadedPlugin {
    using LoadedPlugin::LoadedPlugin;

    susie::OpenFramesFunction openFrames = library["OpenFrames"];
    susie::GetFrameFunction getFrame = library["GetFrame"];
    susie::CloseFramesFunction closeFrames = library["CloseFrames"];
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
