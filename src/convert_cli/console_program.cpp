#include "convert_cli/console_program.h"

#include <windows.h>

#include <algorithm>

#include "app/base/error.h"
#include "app/base/message_box.h"
#include "app/first_run.h"
#include "app/helper_libraries.h"
#include "app/settings/modValue.h"
#include "app/settings/settings.h"
#include "convert/make_folder.h"
#include "convert/modConvertFiles.h"
#include "convert_cli/console_monitor.h"
#include "convert_cli/console_options.h"
#include "convert_cli/console_stream.h"
#include "convert_cli/help_text.h"
#include "convert_cli/input_files.h"
#include "convert_cli/stop_request.h"
#include "plugin/modSusie.h"
#include "plugin/plugin_notices.h"

namespace tessary {
namespace {

// Among the options: behind `--` stand names only.
bool Holds(const std::vector<std::wstring>& arguments, const wchar_t* option) {
    const auto end = std::find(arguments.begin(), arguments.end(), L"--");
    return std::find(arguments.begin(), end, option) != end;
}

// The answer that changes least, for a message with these buttons.
int CautiousAnswer(unsigned style) {
    switch (style & MB_TYPEMASK) {
        case MB_OK:
            return IDOK;
        case MB_ABORTRETRYIGNORE:
            return IDABORT;
        case MB_YESNO:
            return IDNO;
        default:
            return IDCANCEL;
    }
}

// Releases the plug-ins while the program is still whole.
struct PluginsInUse {
    PluginsInUse() = default;
    PluginsInUse(const PluginsInUse&) = delete;
    PluginsInUse& operator=(const PluginsInUse&) = delete;
    ~PluginsInUse() { UnloadSPI(); }
};

int Convert(const ConsoleOptions& options, ConsoleStream& errors) {
    if (!CheckHelperLibraries()) {
        errors.WriteLine(Values().startupFailureReason);
        return kExitSetupError;
    }
    if (!MakeFolder(options.targetFolder)) {
        errors.WriteLine(L"保存先のフォルダを作成できません: " + options.targetFolder);
        return kExitSetupError;
    }
    const InputFiles inputs = FindInputFiles(options.inputs, options.recursive);
    for (const std::wstring& name : inputs.missing)
        errors.WriteLine(L"ファイルが見つかりません: " + name);
    const PluginsInUse plugins;
    StopRequest stop;
    LoadSPI([&](const std::wstring&, int32_t, int32_t) { return !stop.IsMade(); });
    for (const auto& notices : {InterruptedCallNotices(), LoadingNotices()}) {
        for (const std::wstring& notice : notices)
            errors.WriteLine(notice);
    }
    ConsoleStream output(STD_OUTPUT_HANDLE, options.codePage);
    ConsoleMonitor monitor(inputs.files, output, errors, [&] { return stop.IsMade(); });
    const bool ended = inputs.files.empty() || ConvertFiles(options.targetFolder, monitor);
    monitor.WriteSummary();
    if (!ended) {
        errors.WriteLine(stop.IsMade() ? L"変換を中止しました" : L"変換を最後まで行えませんでした");
    }
    const bool isComplete =
        ended && monitor.Failures() == 0 && inputs.missing.empty() && !inputs.files.empty();
    return isComplete ? kExitAllConverted : kExitSomeNot;
}

}  // namespace

int RunConsoleProgram(const std::vector<std::wstring>& arguments) {
    // What a failing plug-in brings up would wait for somebody who is not there.
    SetErrorMode(SEM_FAILCRITICALERRORS | SEM_NOGPFAULTERRORBOX | SEM_NOOPENFILEERRORBOX);
    ConsoleStream errors(STD_ERROR_HANDLE, CP_UTF8);
    SetMessageBoxResponder([&](const std::wstring& text, unsigned style, const std::wstring&) {
        errors.WriteLine(text);
        return CautiousAnswer(style);
    });
    if (Holds(arguments, L"--help") || Holds(arguments, L"--version")) {
        ConsoleStream output(STD_OUTPUT_HANDLE, CP_UTF8);
        output.Write(Holds(arguments, L"--help") ? HelpText() : VersionText());
        return kExitAllConverted;
    }
    if (!ReadGeneralSettings() || !ReadConvertSettings()) return kExitSetupError;
    UseFirstRunDefaults();  // nothing is stored
    ConsoleOptions options;
    if (const std::wstring error = ParseOptions(arguments, options); !error.empty()) {
        errors.WriteLine(error);
        errors.WriteLine(L"使い方: tessary-convert --help");
        return kExitSetupError;
    }
    return Convert(options, errors);
}

}  // namespace tessary
