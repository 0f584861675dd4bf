#include "convert_cli/console_options.h"

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <string_view>

#include "app/base/error.h"
#include "app/base/paths.h"
#include "app/base/text.h"
#include "app/settings/modValue.h"
#include "app/settings/saver_format.h"
#include "app/settings/setting_value.h"

namespace tessary {
namespace {

using Text = const std::wstring&;

ConvertSettings& Settings() {
    return Values().convert;
}

// A whole number from `least` to `most`; otherwise the value stays and the answer is false.
template <typename Number>
bool TakeNumber(Text text, int32_t least, int32_t most, Number& value) {
    const bool isPlain = !text.empty() && text.find_first_not_of(L"0123456789") == text.npos;
    const int32_t number = isPlain ? Trapped(-1, [&] { return ToInt32(text); }) : -1;
    if (number < least || number > most) return false;
    value = static_cast<Number>(number);
    return true;
}

// The place of a text in a list of words.
template <typename Number>
bool TakeWord(Text text, const std::vector<const wchar_t*>& words, Number& value) {
    Number number = 0;
    for (const wchar_t* word : words) {
        if (EqualsIgnoreCase(text, word)) {
            value = number;
            return true;
        }
        ++number;
    }
    return false;
}

bool TakeFormat(Text text, int32_t& format) {
    const auto formats = SaverFormats();
    const auto found = std::ranges::find_if(formats, [&](const SaverFormat& each) {
        return EqualsIgnoreCase(text, each.name) || EqualsIgnoreCase(text, each.extensions.front());
    });
    if (found == formats.end()) return false;
    format = static_cast<int32_t>(found - formats.begin());
    return true;
}

// What is set of the formats, by the names of the arguments.
const SaverOption* FindFormatOption(std::wstring_view argument, std::wstring_view prefix) {
    if (!argument.starts_with(prefix)) return nullptr;
    const auto among = [&](std::span<const SaverOption> options) {
        const auto found =
            std::ranges::find(options, argument.substr(prefix.size()), &SaverOption::argument);
        return found == options.end() ? nullptr : &*found;
    };
    for (const SaverFormat& format : SaverFormats()) {
        if (const SaverOption* const found = among(format.options)) return found;
    }
    return among(SharedSaverOptions());
}

bool IsSwitch(const SaverOption* option) {
    return option != nullptr && option->kind == SaverOption::Kind::kSwitch;
}

bool TakeFormatSwitch(std::wstring_view argument) {
    for (const int16_t value : {0, 1}) {
        const SaverOption* const found = FindFormatOption(argument, value != 0 ? L"--" : L"--no-");
        if (!IsSwitch(found)) continue;
        found->in(Values().saveOptions) = value;
        return true;
    }
    return false;
}

bool TakeFormatValue(const SaverOption& option, Text value) {
    int16_t& taken = option.in(Values().saveOptions);
    if (option.kind == SaverOption::Kind::kLevel) return TakeNumber(value, 0, option.most, taken);
    std::vector<const wchar_t*> words;
    for (const SaverChoice& choice : option.choices)
        words.push_back(choice.word);
    return TakeWord(value, words, taken);
}

bool TakeMask(Text mask, int16_t set) {
    Settings().useDecodeFileMask = 1;
    Settings().decodeFileMaskSet = set;
    Settings().decodeFileMask = mask;
    return true;
}

bool TakeLog(Text name) {
    Settings().outputErrorLog = 1;
    Settings().errorLogFileName = FullPathOf(name);
    return !name.empty();
}

bool TakeEncoding(Text name, UINT& codePage) {
    const UINT codePages[] = {ConsoleCodePage(), CP_UTF8, 932, CP_ACP, CP_OEMCP};
    size_t index = 0;
    if (!TakeWord(name, {L"console", L"utf-8", L"shift_jis", L"ansi", L"oem"}, index)) return false;
    codePage = codePages[index];
    return true;
}

// An option without a value.
struct Switch {
    const wchar_t* name;
    void (*apply)(ConsoleOptions& options);
};

constexpr Switch kSwitches[] = {
    {L"--recursive", [](ConsoleOptions& options) { options.recursive = true; }},
    {L"--quiet", [](ConsoleOptions& options) { options.isQuiet = true; }},
    {L"--ignore-settings", [](ConsoleOptions&) {}},  // was looked at before
    {L"--keep-folders", [](ConsoleOptions&) { Settings().keepFolders = true; }},
    {L"--no-keep-folders", [](ConsoleOptions&) { Settings().keepFolders = false; }},
    {L"--strict", [](ConsoleOptions&) { Settings().skipDamaged = true; }},
    {L"--no-strict", [](ConsoleOptions&) { Settings().skipDamaged = false; }},
    {L"--unpack", [](ConsoleOptions&) { Settings().unpackArchive = 1; }},
    {L"--no-unpack", [](ConsoleOptions&) { Settings().unpackArchive = 0; }},
    {L"--both", [](ConsoleOptions&) { Settings().decodeSizeBoth = true; }},
    {L"--either", [](ConsoleOptions&) { Settings().decodeSizeBoth = false; }},
    {L"--no-min-size", [](ConsoleOptions&) { Settings().noDecodeSmall = 0; }},
    {L"--no-mask", [](ConsoleOptions&) { Settings().useDecodeFileMask = 0; }},
    {L"--keep-unknown", [](ConsoleOptions&) { Settings().decodeUnknownFile = 1; }},
    {L"--no-keep-unknown", [](ConsoleOptions&) { Settings().decodeUnknownFile = 0; }},
    {L"--no-log", [](ConsoleOptions&) { Settings().outputErrorLog = 0; }},
    {L"--append", [](ConsoleOptions&) { Settings().outputAddMode = 1; }},
    {L"--no-append", [](ConsoleOptions&) { Settings().outputAddMode = 0; }},
};

// An option with a value; `apply` answers false for one that makes no sense.
struct Valued {
    const wchar_t* name;
    bool (*apply)(ConsoleOptions& options, Text value);
};

constexpr Valued kValued[] = {
    {L"--out",
     [](ConsoleOptions& options, Text value) {
         options.targetFolder = FullPathOf(value);
         return !value.empty();
     }},
    {L"--report",
     [](ConsoleOptions& options, Text value) {
         options.reportFile = value == kStandardOutput ? value : FullPathOf(value);
         return !value.empty();
     }},
    {L"--on-conflict",
     [](ConsoleOptions&, Text value) {
         return TakeWord(value, {L"rename", L"skip", L"overwrite"}, Settings().onConflict);
     }},
    {L"--jobs",
     [](ConsoleOptions&, Text value) { return TakeNumber(value, 0, kMostJobs, Settings().jobs); }},
    {L"--archive-depth",
     [](ConsoleOptions&, Text value) {
         return TakeNumber(value, 1, INT32_MAX, Settings().archiveDepth);
     }},
    {L"--encoding",
     [](ConsoleOptions& options, Text value) { return TakeEncoding(value, options.codePage); }},
    {L"--format",
     [](ConsoleOptions&, Text value) {
         return TakeFormat(value, Settings().saveType1) && TakeFormat(value, Settings().saveType2);
     }},
    {L"--format-low",
     [](ConsoleOptions&, Text value) { return TakeFormat(value, Settings().saveType1); }},
    {L"--format-high",
     [](ConsoleOptions&, Text value) { return TakeFormat(value, Settings().saveType2); }},
    {L"--min-width",
     [](ConsoleOptions& options, Text value) {
         options.givesMinWidth = true;
         return TakeNumber(value, 0, INT32_MAX, Settings().minDecodeSizeX);
     }},
    {L"--min-height",
     [](ConsoleOptions& options, Text value) {
         options.givesMinHeight = true;
         return TakeNumber(value, 0, INT32_MAX, Settings().minDecodeSizeY);
     }},
    {L"--mask", [](ConsoleOptions&, Text value) { return TakeMask(value, 0); }},
    {L"--exclude-mask", [](ConsoleOptions&, Text value) { return TakeMask(value, 1); }},
    {L"--log", [](ConsoleOptions&, Text value) { return TakeLog(value); }},
};

template <typename Table>
auto Find(const Table& table, std::wstring_view name) {
    const auto found = std::find_if(std::begin(table), std::end(table),
                                    [&](const auto& option) { return option.name == name; });
    return found == std::end(table) ? nullptr : &*found;
}

// A limit for one side alone: the other one must neither let everything pass nor stop it.
void CompleteLimits(const ConsoleOptions& options, bool hadLimits) {
    if (!options.givesMinWidth && !options.givesMinHeight) return;
    ConvertSettings& settings = Settings();
    settings.noDecodeSmall = 1;
    if (hadLimits) return;
    const int32_t other = settings.decodeSizeBoth ? 0 : INT32_MAX;
    if (!options.givesMinWidth) settings.minDecodeSizeX = other;
    if (!options.givesMinHeight) settings.minDecodeSizeY = other;
}

// Takes the option at `at`, which moves on to its value when that is an argument of its own.
std::wstring TakeOption(const std::vector<std::wstring>& arguments, size_t& at,
                        ConsoleOptions& options) {
    const std::wstring& argument = arguments[at];
    if (const Switch* const found = Find(kSwitches, argument)) {
        found->apply(options);
        return {};
    }
    if (TakeFormatSwitch(argument)) return {};
    const size_t equals = argument.find(L'=');
    const std::wstring name = argument.substr(0, equals);
    const Valued* const found = Find(kValued, name);
    const SaverOption* const ofFormat = FindFormatOption(name, L"--");
    if (found == nullptr && (ofFormat == nullptr || IsSwitch(ofFormat))) {
        return L"知らないオプションです: " + argument;
    }
    if (equals == argument.npos && at + 1 == arguments.size()) {
        return L"オプションの値がありません: " + argument;
    }
    const std::wstring value =
        equals == argument.npos ? arguments[++at] : argument.substr(equals + 1);
    const bool isTaken =
        found != nullptr ? found->apply(options, value) : TakeFormatValue(*ofFormat, value);
    return isTaken ? L"" : L"オプション " + name + L" の値が正しくありません: " + value;
}

}  // namespace

bool HoldsOption(const std::vector<std::wstring>& arguments, std::wstring_view option) {
    const auto end = std::find(arguments.begin(), arguments.end(), L"--");
    return std::find(arguments.begin(), end, option) != end;
}

UINT CodePageOf(const std::vector<std::wstring>& arguments) {
    constexpr std::wstring_view kName = L"--encoding";
    UINT codePage = ConsoleOptions().codePage;
    for (size_t at = 0; at < arguments.size() && arguments[at] != L"--"; ++at) {
        const std::wstring& argument = arguments[at];
        if (argument == kName && at + 1 < arguments.size()) {
            TakeEncoding(arguments[++at], codePage);
        } else if (argument.starts_with(std::wstring(kName) + L'=')) {
            TakeEncoding(argument.substr(kName.size() + 1), codePage);
        }
    }
    return codePage;
}

std::wstring ParseOptions(const std::vector<std::wstring>& arguments, ConsoleOptions& options) {
    const bool hadLimits = Settings().noDecodeSmall == 1;
    bool onlyNames = false;  // behind `--`
    for (size_t at = 0; at < arguments.size(); ++at) {
        if (onlyNames || !arguments[at].starts_with(L"--")) {
            options.inputs.push_back(arguments[at]);
        } else if (arguments[at] == L"--") {
            onlyNames = true;
        } else if (std::wstring error = TakeOption(arguments, at, options); !error.empty()) {
            return error;
        }
    }
    CompleteLimits(options, hadLimits);
    if (options.targetFolder.empty()) return L"保存先のフォルダを --out で指定してください";
    if (options.inputs.empty()) return L"変換するファイルを指定してください";
    return {};
}

}  // namespace tessary
