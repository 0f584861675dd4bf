#include "convert/extraction_record.h"

#include <windows.h>

#include <string_view>

#include "app/base/paths.h"
#include "app/base/text.h"
#include "convert/delete_files.h"
#include "plugin/member_file_name.h"

namespace tessary {
namespace {

constexpr wchar_t kName[] = L"~tessary.rec";
constexpr std::wstring_view kHead = L"Tessary extraction record 1\n";
constexpr LONGLONG kMostBytes = 256 << 20;

UniqueFile Open(const std::wstring& path, DWORD creation) {
    return UniqueFile(CreateFileW(ExtendedPath(path).c_str(), GENERIC_READ | GENERIC_WRITE,
                                  FILE_SHARE_READ, nullptr, creation, FILE_ATTRIBUTE_HIDDEN,
                                  nullptr));
}

}  // namespace

ExtractionRecord::ExtractionRecord(const std::wstring& folder)
    : folder_(folder), path_(folder + kName), file_(Open(path_, OPEN_EXISTING)) {
    if (file_) {
        ReadLeftovers();
    } else {
        isForeign_ = PathExists(path_);
    }
    if (isForeign_) file_.Reset();
}

ExtractionRecord::~ExtractionRecord() {
    Close();
}

void ExtractionRecord::Close() {
    if (!file_) return;
    file_.Reset();
    if (copies_.empty() && leftovers_.empty()) DeleteFiles(path_, true);
}

bool ExtractionRecord::IsNameOf(const std::wstring& path) {
    return EqualsIgnoreCase(FileNameOf(path), kName);
}

void ExtractionRecord::ReadLeftovers() {
    LARGE_INTEGER size{};
    isForeign_ = !GetFileSizeEx(file_.Get(), &size) || size.QuadPart > kMostBytes;
    if (isForeign_) return;
    std::wstring text(static_cast<size_t>(size.QuadPart) / sizeof(wchar_t), L'\0');
    DWORD read = 0;
    isForeign_ = !ReadFile(file_.Get(), text.data(),
                           static_cast<DWORD>(text.size() * sizeof(wchar_t)), &read, nullptr) ||
                 !text.starts_with(kHead.substr(0, text.size()));
    if (isForeign_) return;
    std::set<std::wstring> names;
    size_t begin = kHead.size();
    // A line without its end was being written: its file was not begun.
    for (size_t end; begin < text.size() && (end = text.find(L'\n', begin)) != text.npos;
         begin = end + 1) {
        if (end == begin) continue;
        const std::wstring name = text.substr(begin + 1, end - begin - 1);
        if (SafeMemberName(name) != name || IsNameOf(name)) continue;
        if (text[begin] == L'+') names.insert(name);
        if (text[begin] == L'-') names.erase(name);
    }
    leftovers_.assign(names.begin(), names.end());
}

void ExtractionRecord::DeleteLeftovers(
    const std::function<bool(const std::wstring& path)>& isSpared) {
    if (!file_) return;
    for (const std::wstring& name : leftovers_) {
        if (!isSpared(folder_ + name)) DeleteFiles(folder_ + name, true);
    }
    leftovers_.clear();
    SetFilePointerEx(file_.Get(), {}, nullptr, FILE_BEGIN);
    SetEndOfFile(file_.Get());
    Write(std::wstring(kHead));
}

void ExtractionRecord::Add(const std::wstring& path) {
    if (!file_ && !isForeign_) Begin();
    const std::wstring name = path.substr(folder_.size());
    copies_.insert(name);
    Write(L'+' + name + L'\n');
}

void ExtractionRecord::Remove(const std::wstring& path) {
    const std::wstring name = path.substr(folder_.size());
    if (copies_.erase(name) == 0) return;
    if (copies_.empty()) {
        Close();
    } else {
        Write(L'-' + name + L'\n');
    }
}

void ExtractionRecord::Begin() {
    file_ = Open(path_, CREATE_NEW);
    isForeign_ = !file_;
    Write(std::wstring(kHead));
}

void ExtractionRecord::Write(const std::wstring& text) {
    DWORD written = 0;
    if (!file_) return;
    WriteFile(file_.Get(), text.data(), static_cast<DWORD>(text.size() * sizeof(wchar_t)), &written,
              nullptr);
}

}  // namespace tessary
