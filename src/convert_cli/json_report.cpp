#include "convert_cli/json_report.h"

#include <windows.h>

#include <cwchar>
#include <iterator>
#include <string_view>

#include "app/base/paths.h"
#include "app/base/write_error.h"
#include "convert_cli/console_options.h"

namespace tessary {
namespace {

const char* ResultOf(const FileReport& report) {
    switch (report.outcome) {
        case FileOutcome::kConverted:
            return report.isDamaged ? "damaged" : "converted";
        case FileOutcome::kDeclined:
            return "declined";
        case FileOutcome::kSkipped:
            return "skipped";
        case FileOutcome::kStopped:
            return "stopped";
        case FileOutcome::kFailed:
            break;
    }
    return "failed";
}

std::string Utf8(std::wstring_view text) {
    const auto length = static_cast<int>(text.size());
    const int size =
        WideCharToMultiByte(CP_UTF8, 0, text.data(), length, nullptr, 0, nullptr, nullptr);
    std::string bytes(static_cast<size_t>(size), '\0');
    WideCharToMultiByte(CP_UTF8, 0, text.data(), length, bytes.data(), size, nullptr, nullptr);
    return bytes;
}

// Texts between quotation marks.
class Quoter {
  public:
    explicit Quoter(bool isAscii) : isAscii_(isAscii) {}

    std::string operator()(std::wstring_view text) const {
        std::wstring quoted = L"\"";
        for (size_t at = 0; at < text.size(); ++at) {
            const wchar_t character = text[at];
            if (character == L'"' || character == L'\\') {
                quoted += {L'\\', character};
            } else if (NeedsEscape(text, at)) {
                wchar_t escaped[8];
                std::swprintf(escaped, std::size(escaped), L"\\u%04x", unsigned{character});
                quoted += escaped;
            } else {
                quoted += character;
            }
        }
        return Utf8(quoted + L'"');
    }

  private:
    // Names may hold halves of pairs, which no UTF-8 has.
    bool NeedsEscape(std::wstring_view text, size_t at) const {
        const wchar_t character = text[at];
        if (character < 0x20 || (isAscii_ && character > 0x7E)) return true;
        if (IS_HIGH_SURROGATE(character)) {
            return at + 1 == text.size() || !IS_LOW_SURROGATE(text[at + 1]);
        }
        return IS_LOW_SURROGATE(character) && (at == 0 || !IS_HIGH_SURROGATE(text[at - 1]));
    }

    bool isAscii_;
};

// A handle of its own.
UniqueFile StandardOutput() {
    HANDLE own = nullptr;
    const HANDLE process = GetCurrentProcess();
    if (!DuplicateHandle(process, GetStdHandle(STD_OUTPUT_HANDLE), process, &own, 0, FALSE,
                         DUPLICATE_SAME_ACCESS)) {
        return {};
    }
    return UniqueFile(own);
}

}  // namespace

std::string JsonLine(const FileReport& report, bool isAscii) {
    const Quoter quoted(isAscii);
    std::string line = "{\"source\":" + quoted(report.source);
    if (!report.member.empty()) line += ",\"member\":" + quoted(report.member);
    line += ",\"target\":" + quoted(report.target);
    line += std::string(",\"result\":\"") + ResultOf(report) + '"';
    if (report.isRenamed) line += ",\"renamed\":true";
    if (report.isReplaced) line += ",\"replaced\":true";
    if (report.frames != 0) line += ",\"frames\":" + std::to_string(report.frames);
    line += ",\"reason\":" + quoted(ReasonKey(report.reason));
    line += ",\"text\":" + quoted(report.text);
    line += ",\"size\":" + std::to_string(report.bytes);
    return line + ",\"ms\":" + std::to_string(report.milliseconds) + '}';
}

JsonReport::JsonReport(const std::wstring& path) {
    if (path.empty()) return;
    isAscii_ = path == kStandardOutput;
    if (isAscii_) {
        file_ = StandardOutput();
        if (!file_) error_ = ERROR_INVALID_HANDLE;
        return;
    }
    file_ = UniqueFile(CreateFileW(ExtendedPath(path).c_str(), GENERIC_WRITE, FILE_SHARE_READ,
                                   nullptr, OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr));
    if (!file_) {
        error_ = LastWriteError(path);
    } else if (GetFileType(file_.Get()) == FILE_TYPE_DISK && !SetEndOfFile(file_.Get())) {
        // CREATE_ALWAYS would empty it too, but for a hidden file, which it refuses.
        error_ = GetLastError();
    }
}

void JsonReport::Add(const FileReport& report) {
    if (!file_) return;
    const std::string line = JsonLine(report, isAscii_) + '\n';
    DWORD written = 0;
    if (!WriteFile(file_.Get(), line.data(), static_cast<DWORD>(line.size()), &written, nullptr)) {
        error_ = GetLastError();
    } else if (written != line.size()) {
        error_ = ERROR_DISK_FULL;
    }
}

}  // namespace tessary
