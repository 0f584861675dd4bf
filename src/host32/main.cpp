// Where the system enters the host process of plug-ins.
#include <windows.h>

#include <ole2.h>

#include <memory>

#include "app/base/error.h"
#include "app/base/modGetFolder.h"
#include "host32/host_service.h"
#include "host32/kept_hooks.h"
#include "host32/module_watch.h"

namespace {

constexpr int kNotForUsers = 2;  // somebody has started it by hand

// The program ends, and with it what nobody waits for any more, whatever a plug-in is doing. On the
// thread that has waited: while a plug-in holds up the loader none can begin.
void CALLBACK OnProgramEnd(void*, BOOLEAN) {
    TerminateProcess(GetCurrentProcess(), 0);
}

// Who closes a handle of its own twice may meet one of these.
void KeepOpen(const tessary::ChannelHandles& handles) {
    for (const HANDLE handle : {handles.page, handles.request, handles.answer, handles.program})
        SetHandleInformation(handle, HANDLE_FLAG_PROTECT_FROM_CLOSE,
                             HANDLE_FLAG_PROTECT_FROM_CLOSE);
}

int Serve(const tessary::ChannelHandles& handles) {
    KeepOpen(handles);
    std::optional<tessary::Section> page =
        tessary::Section::Open(tessary::UniqueSection(handles.page), sizeof(tessary::ChannelPage),
                               tessary::Section::Access::kWrite);
    if (!page) return kNotForUsers;
    HANDLE wait = nullptr;
    RegisterWaitForSingleObject(&wait, handles.program, OnProgramEnd, nullptr, INFINITE,
                                WT_EXECUTEONLYONCE | WT_EXECUTEINWAITTHREAD);
    // It never ends: threads of plug-ins may crash while the process does.
    auto* const service =
        std::make_unique<tessary::HostService>(tessary::ChannelEnd(*std::move(page)), handles)
            .release();
    tessary::WatchModules([service](HMODULE module) {
        service->NoteStartUp();
        tessary::KeepHooksHere(module);
    });
    service->Run();
    return 0;
}

}  // namespace

int WINAPI wWinMain(HINSTANCE, HINSTANCE, wchar_t* arguments, int) {
    // Nobody sees a message of the system's about what the program tells of in its own words.
    SetErrorMode(GetErrorMode() | SEM_FAILCRITICALERRORS | SEM_NOOPENFILEERRORBOX |
                 SEM_NOGPFAULTERRORBOX);
    const auto handles = tessary::ChannelHandles::Of(arguments);
    if (!handles) return kNotForUsers;
    // At the end of the session the program comes first, and takes this process along.
    SetProcessShutdownParameters(0x27F, SHUTDOWN_NORETRY);
    SetDllDirectoryW(L"");
    SetCurrentDirectoryW(tessary::AppFolder().c_str());
    // Plug-ins that use COM would else start and end it for every picture; their settings windows
    // may take what is dropped.
    const HRESULT com = OleInitialize(nullptr);
    const int result = tessary::Trapped(1, [&] { return Serve(*handles); });
    if (SUCCEEDED(com)) OleUninitialize();
    return result;
}
