// Where the system enters the console converter.
#include <windows.h>

#include <shellapi.h>

#include <memory>

#include "app/base/com_object.h"
#include "app/base/error.h"
#include "convert_cli/console_program.h"

int wmain() {
    // Plug-ins that use COM would else start and end it for every picture, which takes longer than
    // decoding a small one.
    const tessary::ComSession com;
    return tessary::Trapped(tessary::kExitSetupError, [] {
        // The command line itself: the runtime might replace masks by the files that they match.
        int count = 0;
        const std::unique_ptr<wchar_t*, decltype(&LocalFree)> arguments(
            CommandLineToArgvW(GetCommandLineW(), &count), LocalFree);
        if (!arguments || count < 1) return tessary::kExitSetupError;
        return tessary::RunConsoleProgram({arguments.get() + 1, arguments.get() + count});
    });
}
