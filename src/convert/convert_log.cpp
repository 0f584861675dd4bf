#include "convert/convert_log.h"

#include <windows.h>

#include <algorithm>
#include <array>
#include <iterator>

#include "app/base/file_identity.h"
#include "app/base/handles.h"
#include "app/base/modGetFolder.h"
#include "app/base/paths.h"
#include "app/base/text.h"
#include "app/base/write_error.h"

namespace tessary {
namespace {

constexpr size_t kFieldColumns = 24;

// A log has no NUL bytes; pictures, archives and other data have some at their beginning.
bool IsData(const std::wstring& path) {
    const UniqueFile file(CreateFileW(ExtendedPath(path).c_str(), GENERIC_READ,
                                      FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                                      nullptr, OPEN_EXISTING, 0, nullptr));
    std::array<char, 4096> bytes{};
    DWORD size = 0;
    if (!file ||
        !ReadFile(file.Get(), bytes.data(), static_cast<DWORD>(bytes.size()), &size, nullptr)) {
        return false;
    }
    const auto end = std::next(bytes.begin(), static_cast<ptrdiff_t>(size));
    return std::find(bytes.begin(), end, '\0') != end;
}

std::wstring LineOf(std::wstring_view label, std::wstring_view value, int16_t indent) {
    std::wstring line(static_cast<size_t>(indent < 0 ? 0 : indent), L' ');
    line += label;
    // Only the blanks added here count as the one column that they are.
    const size_t columns = 2 * line.size();
    if (columns < kFieldColumns) line.append(kFieldColumns - columns, L' ');
    line += value;
    return line;
}

}  // namespace

bool IsLogName(const std::wstring& name) {
    return !name.empty() && !FileNameOf(name).empty() &&
           name.find_first_of(L"*?\"<>|") == name.npos;
}

std::wstring LogPath(const std::wstring& name) {
    const bool isFull = name.starts_with(LR"(\\)") || (name.size() > 2 && name[1] == L':');
    return isFull ? name : AppFolder() + name;
}

std::wstring LogRefusal(std::span<const ConvertSource> files, const ConvertSettings& settings) {
    if (settings.outputErrorLog != 1) return {};
    const std::wstring log = LogPath(settings.errorLogFileName);
    if (!PathExists(log) || IsFolder(log)) return {};
    const std::wstring identity = IdentityOf(log);
    const bool isSource = std::ranges::any_of(
        files, [&](const ConvertSource& file) { return IdentityOf(file.path) == identity; });
    if (isSource) return L"変換するファイルには、変換ログを書き込めません: " + log;
    if (IsData(log)) return L"画像などのデータには、変換ログを書き込めません: " + log;
    return {};
}

void ConvertLog::Open(const ConvertSettings& settings) {
    if (settings.outputErrorLog != 1) return;
    const OpenMode mode = settings.outputAddMode == 0 ? OpenMode::kOutput : OpenMode::kAppend;
    const std::wstring path = LogPath(settings.errorLogFileName);
    fileNumber_ = files_.OpenFileNumber(path, mode, OpenAccess::kWrite, OpenLock::kDenyWrite);
    if (fileNumber_ != 0) return;
    refusal_ = LastWriteError(path);
    GiveUp(L"!!! ログファイルがオープンできません。 !!!", refusal_);
}

void ConvertLog::GiveUp(const wchar_t* what, uint32_t error) {
    error_ = error;
    for (const wchar_t* line : {L"!!! エラー                             !!!", what,
                                L"!!! ログファイルの作成を中止して       !!!",
                                L"!!! 処理を継続します。                 !!!"}) {
        ShowLine(line);
    }
    ShowLine(LineOf(L"詳細情報", WriteErrorText(error), 4));
}

void ConvertLog::Close() {
    files_.CloseFileNumber(fileNumber_);
    fileNumber_ = 0;
}

void ConvertLog::WriteConvertLog(std::wstring_view label, std::wstring_view value, int16_t indent) {
    const std::wstring line = LineOf(label, value, indent);
    ShowLine(line);
    if (fileNumber_ == 0 || files_.WriteLine(fileNumber_, ToAnsi(line))) return;
    const DWORD error = GetLastError();
    Close();
    GiveUp(L"!!! ログファイルに書き込めません。     !!!", error);
}

void ConvertLog::ShowLine(const std::wstring& line) {
    if (monitor_.LogLineCount() > kMostLogLines) monitor_.RemoveFirstLogLine();
    monitor_.AddLogLine(line);
    monitor_.Breathe();
}

}  // namespace tessary
