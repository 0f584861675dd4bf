#include "convert_cli/json_report.h"

#include <windows.h>

#include <cstdio>
#include <string_view>

#include "app/base/paths.h"
#include "app/base/text.h"

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

// Names may hold halves of pairs, which no UTF-8 has.
std::string Utf8(std::wstring_view text) {
    const auto length = static_cast<int>(text.size());
    const int size =
        WideCharToMultiByte(CP_UTF8, 0, text.data(), length, nullptr, 0, nullptr, nullptr);
    std::string bytes(static_cast<size_t>(size), '\0');
    WideCharToMultiByte(CP_UTF8, 0, text.data(), length, bytes.data(), size, nullptr, nullptr);
    return bytes;
}

std::string Quoted(std::wstring_view text) {
    std::string quoted = "\"";
    for (const char byte : Utf8(text)) {
        if (byte == '"' || byte == '\\') {
            quoted += {'\\', byte};
        } else if (static_cast<unsigned char>(byte) < 0x20) {
            char escaped[8];
            std::snprintf(escaped, sizeof(escaped), "\\u%04x", byte);
            quoted += escaped;
        } else {
            quoted += byte;
        }
    }
    return quoted + '"';
}

}  // namespace

std::string JsonLine(const FileReport& report) {
    std::string line = "{\"source\":" + Quoted(report.source);
    if (!report.member.empty()) line += ",\"member\":" + Quoted(report.member);
    line += ",\"target\":" + Quoted(report.target);
    line += std::string(",\"result\":\"") + ResultOf(report) + '"';
    if (report.isRenamed) line += ",\"renamed\":true";
    if (report.isReplaced) line += ",\"replaced\":true";
    line += ",\"reason\":" + Quoted(ReasonKey(report.reason));
    line += ",\"text\":" + Quoted(report.text);
    line += ",\"size\":" + std::to_string(report.bytes);
    return line + ",\"ms\":" + std::to_string(report.milliseconds) + '}';
}

JsonReport::JsonReport(const std::wstring& path, Start start) {
    if (path.empty()) return;
    file_ = UniqueFile(CreateFileW(ExtendedPath(path).c_str(), GENERIC_WRITE, FILE_SHARE_READ,
                                   nullptr, start == Start::kAnew ? CREATE_ALWAYS : OPEN_EXISTING,
                                   FILE_ATTRIBUTE_NORMAL, nullptr));
    if (file_) SetFilePointer(file_.Get(), 0, nullptr, FILE_END);
    isGood_ = static_cast<bool>(file_);
}

void JsonReport::Add(const FileReport& report) {
    if (!file_) return;
    const std::string line = JsonLine(report) + '\n';
    DWORD written = 0;
    isGood_ =
        WriteFile(file_.Get(), line.data(), static_cast<DWORD>(line.size()), &written, nullptr) &&
        written == line.size() && isGood_;
}

}  // namespace tessary
