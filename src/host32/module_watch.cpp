#include "host32/module_watch.h"

#include <winternl.h>

#include <memory>
#include <utility>

#include "app/base/error.h"
#include "helpers/system/system_library.h"

namespace tessary {
namespace {

using Tell = std::function<void(HMODULE module)>;

// As the system's native interface has it.
struct LoadedModule {
    ULONG flags;
    const UNICODE_STRING* path;
    const UNICODE_STRING* name;
    void* base;
    ULONG size;
};
using Callback = void(CALLBACK*)(ULONG reason, const LoadedModule* module, void* context);
using Register = LONG(NTAPI*)(ULONG flags, Callback callback, void* context, void** cookie);

constexpr ULONG kLoaded = 1;

void CALLBACK OnModule(ULONG reason, const LoadedModule* module, void* context) {
    if (reason != kLoaded) return;
    Trapped([&] { (*static_cast<const Tell*>(context))(static_cast<HMODULE>(module->base)); });
}

}  // namespace

// Until the process ends: plug-ins' threads may load to the last.
void WatchModules(std::function<void(HMODULE module)> tell) {
    const auto watch = SystemFunction<Register>(L"ntdll.dll", "LdrRegisterDllNotification");
    void* cookie = nullptr;
    if (watch != nullptr) {
        watch(0, OnModule, std::make_unique<Tell>(std::move(tell)).release(), &cookie);
    }
}

}  // namespace tessary
