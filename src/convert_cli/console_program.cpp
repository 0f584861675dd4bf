#include "convert_cli/console_program.h"

#include <windows.h>

#include <algorithm>

#include "app/base/error.h"
#include "app/base/file_identity.h"
#include "app/base/message_box.h"
#include "app/base/paths.h"
#include "app/base/text.h"
#include "app/base/write_error.h"
#include "app/first_run.h"
#include "app/helper_libraries.h"
#include "app/settings/modValue.h"
#include "app/settings/settings.h"
#include "convert/convert_log.h"
#include "convert/make_folder.h"
#include "convert/modConvertFiles.h"
#include "convert_cli/console_monitor.h"
#include "convert_cli/console_options.h"
#include "convert_cli/console_stream.h"
#include "convert_cli/dialog_watch.h"
#include "convert_cli/help_text.h"
#include "convert_cli/input_files.h"
#include "convert_cli/json_report.h"
#include "convert_cli/stop_request.h"
#include "host/host_connection.h"
#include "plugin/modSusie.h"
#include "plugin/plugin_notices.h"

namespace tessary {
namespace {

constexpr const wchar_t* kStoppedText = L"変換を中止しました";

bool WantsHelp(const std::vector<std::wstring>& arguments) {
    for (const wchar_t* const option : {L"--help", L"-h", L"-?", L"/?"}) {
        if (HoldsOption(arguments, option)) return true;
    }
    return arguments.empty();
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

// Whether all that the settings ask for is there; otherwise it has been told.
bool LoadPlugins(const StopRequest& stop, ConsoleStream& errors) {
    SusieCollection().RememberPlugins();
    LoadSPI([&](const std::wstring&, int32_t, int32_t) { return !stop.IsMade(); },
            Asking::kUnknown);
    for (const auto& notices : {InterruptedCallNotices(), BarredNotices(), LoadingNotices()}) {
        for (const std::wstring& notice : notices)
            errors.WriteLine(notice);
    }
    const CollectionSusie& plugins = SusieCollection();
    if (plugins.Count() == 0 && !stop.IsMade()) {
        errors.WriteLine(
            L"プラグインがひとつも読み込まれていません。ビットマップだけを変換できます");
        return Values().general.useSPI != 1;  // the user's own choice is nothing amiss
    }
    return std::ranges::none_of(plugins.LeftOut(), [](const LeftOutPlugin& one) {
        return one.reason == LeftOutReason::kNoFolder;
    });
}

// What could not be written, and why.
void TellUnwritten(const wchar_t* what, const std::wstring& path, DWORD error,
                   ConsoleStream& errors) {
    errors.WriteLine(what + path);
    errors.WriteLine(L"  " + WriteErrorText(error));
}

void TellBadReport(const JsonReport& report, const ConsoleOptions& options, ConsoleStream& errors) {
    TellUnwritten(L"レポートに書き込めません: ", options.reportFile, report.Error(), errors);
}

// Neither report nor log may take the place of a picture, or of each other.
bool AreOutputsFree(const ConsoleOptions& options, const InputFiles& inputs,
                    ConsoleStream& errors) {
    std::wstring refusal = LogRefusal(inputs.files, Values().convert);
    const std::wstring& report = options.reportFile;
    if (!report.empty() && report != kStandardOutput && PathExists(report) &&
        std::ranges::any_of(inputs.files, [&](const ConvertSource& file) {
            return IsSameFile(file.path, report);
        })) {
        refusal = L"変換するファイルには書き込めません: " + report;
    }
    const ConvertSettings& settings = Values().convert;
    if (!report.empty() && settings.outputErrorLog == 1 &&
        IsSameFile(LogPath(settings.errorLogFileName), report)) {
        refusal = L"ログとレポートを同じファイルには書き込めません: " + report;
    }
    if (!refusal.empty()) errors.WriteLine(refusal);
    return refusal.empty();
}

int RunWithPlugins(const ConsoleOptions& options, const InputFiles& inputs, const StopRequest& stop,
                   JsonReport& report, ConsoleStream& errors) {
    bool isSetUp = LoadPlugins(stop, errors);
    // Where programs read the report there is nothing else.
    const bool isReport = options.reportFile == kStandardOutput;
    ConsoleStream output(isReport ? STD_ERROR_HANDLE : STD_OUTPUT_HANDLE, options.codePage);
    ConsoleMonitor monitor(inputs.files, output, errors, report, options.isQuiet,
                           [&] { return stop.IsMade(); });
    const bool isReportBegun = report.IsGood();
    const ConvertEnd end = inputs.files.empty() ? ConvertEnd{.isWhole = true}
                                                : ConvertFiles(options.targetFolder, monitor);
    monitor.WriteSummary();
    if (const DWORD error = end.logError; error != ERROR_SUCCESS) {
        TellUnwritten(L"ログファイルに書き込めません: ", LogPath(Values().convert.errorLogFileName),
                      error, errors);
        isSetUp = false;
    }
    if (!report.IsGood()) {
        // Otherwise it has been told.
        if (isReportBegun) TellBadReport(report, options, errors);
        isSetUp = false;
    }
    const OutcomeCounts& counts = monitor.Counts();
    const bool isAllFiltered = counts.filtered > 0 && counts.filtered == counts.All();
    if (isAllFiltered) {
        errors.WriteLine(L"名前の条件に合うファイルがありません");
    }
    if (!end) {
        errors.WriteLine(stop.IsMade() ? kStoppedText : L"変換を最後まで行えませんでした");
    }
    if (!end && stop.IsMade()) return kExitStopped;
    if (!isSetUp) return kExitSetupError;
    const bool isComplete = end.isWhole && counts.failed == 0 && counts.damaged == 0 &&
                            inputs.troubles.empty() && !inputs.files.empty() && !isAllFiltered;
    return isComplete ? kExitAllConverted : kExitSomeNot;
}

int Run(const ConsoleOptions& options, const InputFiles& inputs, JsonReport& report,
        ConsoleStream& errors) {
    const DialogWatch dialogs([&](const std::wstring& line) { errors.WriteLine(line); });
    const StopRequest stop([&] { errors.WriteLine(kStoppedText); });
    const PluginsInUse plugins;
    return RunWithPlugins(options, inputs, stop, report, errors);
}

int Convert(const ConsoleOptions& options, ConsoleStream& errors) {
    UseHostProcess({});
    UseFurtherHosts(HostWindows::kShown);  // DialogWatch answers them
    SetHostLimits(Values().general);
    const HelperLibraries libraries = CheckHelperLibraries();
    if (!libraries) {
        errors.WriteLine(libraries.failure);
        return kExitSetupError;
    }
    if (!libraries.notice.empty()) errors.WriteLine(libraries.notice);
    if (!MakeFolder(options.targetFolder)) {
        const DWORD error = GetLastError();
        TellUnwritten(L"保存先のフォルダを作成できません: ", options.targetFolder, error, errors);
        return kExitSetupError;
    }
    const InputFiles inputs = FindInputFiles(options.inputs, options.recursive);
    for (const std::wstring& trouble : inputs.troubles)
        errors.WriteLine(trouble);
    if (!AreOutputsFree(options, inputs, errors)) return kExitSetupError;
    JsonReport report(options.reportFile);
    if (!report.IsGood()) TellBadReport(report, options, errors);
    return Run(options, inputs, report, errors);
}

bool ReadSettings(const std::vector<std::wstring>& arguments) {
    if (HoldsOption(arguments, L"--ignore-settings")) {
        SetFirstRunDefaults();
        return true;
    }
    if (!ReadGeneralSettings() || !ReadConvertSettings()) return false;
    UseFirstRunDefaults();  // nothing is stored
    return true;
}

}  // namespace

int RunConsoleProgram(const std::vector<std::wstring>& arguments) {
    // What a failing plug-in brings up would wait for somebody who is not there.
    SetErrorMode(SEM_FAILCRITICALERRORS | SEM_NOGPFAULTERRORBOX | SEM_NOOPENFILEERRORBOX);
    const UINT codePage = CodePageOf(arguments);
    ConsoleStream errors(STD_ERROR_HANDLE, codePage);
    SetMessageBoxResponder([&](const std::wstring& text, unsigned style, const std::wstring&) {
        errors.WriteLine(text);
        return CautiousAnswer(style);
    });
    if (WantsHelp(arguments) || HoldsOption(arguments, L"--version")) {
        ConsoleStream output(STD_OUTPUT_HANDLE, codePage);
        output.Write(WantsHelp(arguments) ? HelpText() : VersionText());
        return arguments.empty() ? kExitSetupError : kExitAllConverted;
    }
    if (!ReadSettings(arguments)) return kExitSetupError;
    ConsoleOptions options;
    if (const std::wstring error = ParseOptions(arguments, options); !error.empty()) {
        errors.WriteLine(error);
        errors.WriteLine(L"使い方: tessary-convert --help");
        return kExitSetupError;
    }
    return Trapped(int{kExitSetupError}, [&] { return Convert(options, errors); });
}

}  // namespace tessary
