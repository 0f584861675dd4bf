// The kernel's four files, loaded from the application folder as the program loads them.
#pragma once

#include <gtest/gtest.h>
#include <windows.h>

#include <filesystem>
#include <memory>
#include <string>
#include <type_traits>

#include "helpers/kernel/pic_kernel.h"

namespace tessary::kernel {

class LoadedFile {
  public:
    // The test programs stand in a folder beside the application folder.
    explicit LoadedFile(const wchar_t* fileName) {
        wchar_t program[MAX_PATH];
        GetModuleFileNameW(nullptr, program, MAX_PATH);
        const auto folder = std::filesystem::path(program).parent_path().parent_path() / "bin";
        module_.reset(LoadLibraryW((folder / fileName).c_str()));
        EXPECT_NE(module_, nullptr) << folder;
    }

    template <typename Function>
    Function Entry(const char* name) const {
        const FARPROC entry = GetProcAddress(module_.get(), name);
        EXPECT_NE(entry, nullptr) << name;
        return reinterpret_cast<Function>(reinterpret_cast<void*>(entry));
    }

  private:
    struct FreeModule {
        void operator()(HMODULE module) const { FreeLibrary(module); }
    };
    std::unique_ptr<std::remove_pointer_t<HMODULE>, FreeModule> module_;
};

struct LoadedKernel {
    LoadedFile kernel{L"pic_kernel.dll"};
    LoadedFile import{L"bmp_import.iplg"};
    LoadedFile filter{L"plg_resize.fplg"};
    LoadedFile output{L"bmp_export.eplg"};
    CreateImageFunction create = kernel.Entry<CreateImageFunction>(kCreateImageName);
    GetImageBlocksFunction blocks = kernel.Entry<GetImageBlocksFunction>(kGetImageBlocksName);
    DestroyImageHandleFunction destroy =
        kernel.Entry<DestroyImageHandleFunction>(kDestroyImageHandleName);
    AttachMemoryImageFunction attach =
        import.Entry<AttachMemoryImageFunction>(kAttachMemoryImageName);
    DoFilterFunction resize = filter.Entry<DoFilterFunction>(kDoFilterName);
    WriteImageFunction write = output.Entry<WriteImageFunction>(kWriteImageName);
    WriteMemoryImageFunction writeMemory =
        output.Entry<WriteMemoryImageFunction>(kWriteMemoryImageName);
};

}  // namespace tessary::kernel
