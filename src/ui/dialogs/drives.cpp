#include "ui/dialogs/drives.h"

// The network calls need the types of windows.h.
#include <winnetwk.h>

#include <cwctype>

#include "helpers/system/system_library.h"

namespace tessary {
namespace {

std::wstring LabelOf(const std::wstring& root) {
    wchar_t label[MAX_PATH + 1] = {};
    GetVolumeInformationW(root.c_str(), label, MAX_PATH + 1, nullptr, nullptr, nullptr, nullptr, 0);
    return label;
}

template <typename Function>
Function NetworkFunction(const char* entry) {
    return SystemFunction<Function>(L"mpr.dll", entry);
}

// The share behind a network drive, as the system remembers it.
std::wstring ShareOf(const std::wstring& root) {
    static const auto getConnection =
        NetworkFunction<decltype(&WNetGetConnectionW)>("WNetGetConnectionW");
    wchar_t share[1024] = {};
    DWORD size = 1024;
    const std::wstring letter = root.substr(0, 2);
    return getConnection != nullptr && getConnection(letter.c_str(), share, &size) == NO_ERROR
               ? share
               : L"";
}

std::wstring DescriptionOf(const std::wstring& root) {
    const auto labelOr = [](const std::wstring& text, const wchar_t* otherwise) {
        return text.empty() ? std::wstring(otherwise) : text;
    };
    switch (GetDriveTypeW(root.c_str())) {
        case DRIVE_REMOVABLE:
            return L"リムーバブル ディスク";
        case DRIVE_CDROM:
            return L"CD/DVD ドライブ";
        case DRIVE_REMOTE:
            return labelOr(ShareOf(root), L"ネットワーク ドライブ");
        case DRIVE_RAMDISK:
            return labelOr(LabelOf(root), L"RAM ディスク");
        default:
            return labelOr(LabelOf(root), L"ローカル ディスク");
    }
}

}  // namespace

std::vector<Drive> ListDrives() {
    std::vector<Drive> drives;
    const DWORD present = GetLogicalDrives();
    for (int letter = 0; letter < 26; ++letter) {
        if ((present & (1U << letter)) == 0) continue;
        const std::wstring root = std::wstring(1, static_cast<wchar_t>(L'A' + letter)) + L":\\";
        drives.push_back({root, root.substr(0, 2) + L" " + DescriptionOf(root)});
    }
    return drives;
}

DWORD ConnectNetworkDrive(HWND owner) {
    const auto connect = NetworkFunction<decltype(&WNetConnectionDialog)>("WNetConnectionDialog");
    return connect != nullptr ? connect(owner, RESOURCETYPE_DISK) : ERROR_CALL_NOT_IMPLEMENTED;
}

std::wstring RootOf(const std::wstring& path) {
    if (path.size() >= 2 && path[1] == L':' && std::iswalpha(path[0]) != 0) {
        return std::wstring(1, static_cast<wchar_t>(std::towupper(path[0]))) + L":\\";
    }
    if (!path.starts_with(LR"(\\)")) return {};
    const size_t server = path.find(L'\\', 2);
    if (server == std::wstring::npos || server == 2 || server + 1 >= path.size()) return {};
    const size_t share = path.find(L'\\', server + 1);
    if (share == server + 1) return {};
    return path.substr(0, share) + L'\\';
}

}  // namespace tessary
