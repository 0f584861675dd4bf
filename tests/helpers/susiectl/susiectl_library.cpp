#include "tests/helpers/susiectl/susiectl_library.h"

#include <memory>
#include <utility>

#include "tests/plugins/test_plugins.h"
#include "tests/support/content_of.h"

namespace tessary::test {
namespace {

using Work = std::function<void()>;

DWORD WINAPI Run(void* work) {
    (*std::unique_ptr<Work>(static_cast<Work*>(work)))();
    return 0;
}

}  // namespace

bool EndsInThread(Work work, DWORD longest) {
    auto owned = std::make_unique<Work>(std::move(work));
    const HANDLE thread = CreateThread(nullptr, 0, Run, owned.release(), 0, nullptr);
    const bool hasEnded = WaitForSingleObject(thread, longest) == WAIT_OBJECT_0;
    CloseHandle(thread);
    return hasEnded;
}

const SusiectlLibrary& Susiectl() {
    static const SusiectlLibrary library;
    return library;
}

LoadedPlugin::LoadedPlugin(const std::wstring& fileName)
    : module_(Susiectl().loadLibraryW(TestPluginPath(fileName).c_str())) {}

LoadedPlugin::LoadedPlugin(const TemporaryFolder& folder, std::string_view script) {
    const std::wstring path = folder.Path() + L"scripted.spi";
    folder.Write(L"scripted.spi.script", script);
    CopyFileW(TestPluginPath(L"iftst.spi").c_str(), path.c_str(), FALSE);
    module_ = Susiectl().loadLibraryW(path.c_str());
}

LoadedPlugin::LoadedPlugin(const TemporaryFolder& folder,
                           const std::function<void(IMAGE_OPTIONAL_HEADER32&)>& change) {
    std::string image = ContentOf(TestPluginPath(L"iftst.spi"));
    const auto* const dos = reinterpret_cast<const IMAGE_DOS_HEADER*>(image.data());
    change(reinterpret_cast<IMAGE_NT_HEADERS32*>(image.data() + dos->e_lfanew)->OptionalHeader);
    module_ = Susiectl().loadLibraryW(folder.Write(L"changed.spi", image).c_str());
}

LoadedPlugin::~LoadedPlugin() {
    Susiectl().freeLibrary(module_);
}

int LoadedPlugin::Decode(std::string_view picture, susie::ProgressCallback progress,
                         LONG_PTR userData) const {
    HLOCAL info = nullptr;
    HLOCAL bits = nullptr;
    const int answer = Susiectl().getPicture(
        (*this)["GetPicture"], picture.data(), static_cast<LONG_PTR>(picture.size()),
        susie::kSourceMemory, &info, &bits, progress, userData);
    if (answer == susie::kSuccess) {
        LocalFree(info);
        LocalFree(bits);
    }
    return answer;
}

int LoadedPlugin::DecodeWith(const std::string& directives) const {
    return Decode("TST 4x3x24\n" + directives + "\n");
}

}  // namespace tessary::test
