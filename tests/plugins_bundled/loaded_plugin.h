// A finished plug-in of the application folder, called as a host calls it.
#pragma once

#include <windows.h>

#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "helpers/susiectl/susie_interface.h"
#include "tests/plugins_bundled/decoded_picture.h"

namespace tessary::spi::test {

using codec::test::Bytes;
using codec::test::Colors;

class LoadedModule {
  public:
    explicit LoadedModule(const std::string& name) {
        // The application folder stands beside the folder of the test programs.
        char program[MAX_PATH];
        GetModuleFileNameA(nullptr, program, MAX_PATH);
        std::string path(program);
        path.resize(path.rfind('\\'));
        path += "\\..\\bin\\" + name + ".spi";
        module_ = LoadLibraryA(path.c_str());
        EXPECT_NE(module_, nullptr) << path << ' ' << GetLastError();
        Find(getPluginInfo, "GetPluginInfo");
        Find(isSupported, "IsSupported");
        Find(getLastCondition, "GetLastCondition");
    }
    ~LoadedModule() { FreeLibrary(module_); }
    LoadedModule(const LoadedModule&) = delete;
    LoadedModule& operator=(const LoadedModule&) = delete;

    susie::GetPluginInfoFunction getPluginInfo;
    susie::IsSupportedFunction isSupported;
    susie::GetLastConditionFunction getLastCondition;

  protected:
    template <class Function>
    void Find(Function& function, const char* name) {
        const auto address = reinterpret_cast<void*>(GetProcAddress(module_, name));
        EXPECT_NE(address, nullptr) << name;
        function = reinterpret_cast<Function>(address);
    }

  private:
    HMODULE module_;
};

class LoadedPlugin : public LoadedModule {
  public:
    explicit LoadedPlugin(const std::string& name) : LoadedModule(name) {
        Find(getPictureInfo, "GetPictureInfo");
        Find(getPicture, "GetPicture");
        Find(getPreview, "GetPreview");
    }

    susie::GetPictureInfoFunction getPictureInfo;
    susie::GetPictureFunction getPicture;
    susie::GetPictureFunction getPreview;
};

class LoadedArchivePlugin : public LoadedModule {
  public:
    explicit LoadedArchivePlugin(const std::string& name) : LoadedModule(name) {
        Find(getArchiveInfo, "GetArchiveInfo");
        Find(getFileInfo, "GetFileInfo");
        Find(getFile, "GetFile");
        Find(getLastCondition, "GetLastCondition");
    }

    susie::GetArchiveInfoFunction getArchiveInfo;
    susie::GetFileInfoFunction getFileInfo;
    susie::GetFileFunction getFile;
    susie::GetLastConditionFunction getLastCondition;
};

// One call of GetPicture, and what it hands over.
class HandedPicture {
  public:
    HandedPicture(const LoadedPlugin& plugin, const void* source, size_t length, uint32_t flag,
                  susie::ProgressCallback progress = nullptr, LONG_PTR userData = 0)
        : result(plugin.getPicture(static_cast<const char*>(source), static_cast<LONG_PTR>(length),
                                   flag, &info, &bits, progress, userData)) {}
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
        return Colors(*dib::DibView::Of(infoBytes, bitsBytes));
    }

    HLOCAL info = nullptr;
    HLOCAL bits = nullptr;
    const int result;
};

}  // namespace tessary::spi::test
