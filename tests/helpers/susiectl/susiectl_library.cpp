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

const SusieLibrary& Susiectl() {
    static const LoadedLibrary loaded(L"susiectl.dll");
    return *FindSusieLibrary();
}

LoadedPlugin::LoadedPlugin(const std::wstring& fileName, const std::string& script,
                           const Change& change) {
    std::string image = ContentOf(TestPluginPath(fileName));
    const auto* const dos = reinterpret_cast<const IMAGE_DOS_HEADER*>(image.data());
    auto* const nt = reinterpret_cast<IMAGE_NT_HEADERS32*>(image.data() + dos->e_lfanew);
    if (change) change(nt->OptionalHeader);
    folder_.Write(fileName + L".script", script);
    module_ = Susiectl().loadLibrary(folder_.Write(fileName, image).c_str());
}

LoadedPlugin::~LoadedPlugin() {
    Susiectl().freeLibrary(module_);
}

int LoadedPlugin::Calls(const char* function) const {
    return TestCallCount(module_, function);
}

int LoadedPlugin::DecodeWith(const std::string& directives, susie::ProgressCallback progress,
                             LONG_PTR userData) const {
    const std::string picture = "TST 4x3x24\n" + directives + "\n";
    HLOCAL info = nullptr;
    HLOCAL bits = nullptr;
    const int answer = Susiectl().getPicture(
        (*this)["GetPicture"], picture.data(), static_cast<LONG_PTR>(picture.size()),
        susie::kSourceMemory, &info, &bits, progress, userData);
    if (answer != susie::kSuccess) return answer;
    LocalFree(info);
    LocalFree(bits);
    return answer;
}

}  // namespace tessary::test
