#include "ui/form/file_block.h"

#include <shlobj.h>

#include <cstring>

namespace tessary {
namespace {

UniqueGlobal BlockOf(const void* bytes, size_t size) {
    UniqueGlobal block(GlobalAlloc(GMEM_MOVEABLE, size));
    void* const to = block ? GlobalLock(block.Get()) : nullptr;
    if (to == nullptr) return {};
    std::memcpy(to, bytes, size);
    GlobalUnlock(block.Get());
    return block;
}

}  // namespace

std::vector<std::wstring> PathsIn(HDROP files) {
    std::vector<std::wstring> paths;
    const UINT count = DragQueryFileW(files, 0xFFFFFFFF, nullptr, 0);
    for (UINT index = 0; index < count; ++index) {
        std::wstring path(DragQueryFileW(files, index, nullptr, 0) + 1, L'\0');
        path.resize(DragQueryFileW(files, index, path.data(), static_cast<UINT>(path.size())));
        if (!path.empty()) paths.push_back(std::move(path));
    }
    return paths;
}

UniqueGlobal MakeFileBlock(const std::vector<std::wstring>& paths) {
    DROPFILES head{};
    head.pFiles = sizeof(head);
    head.fWide = TRUE;
    std::vector<uint8_t> bytes(sizeof(head));
    std::memcpy(bytes.data(), &head, sizeof(head));
    const auto append = [&](const std::wstring& text) {
        const auto* const first = reinterpret_cast<const uint8_t*>(text.c_str());
        bytes.insert(bytes.end(), first, first + (text.size() + 1) * sizeof(wchar_t));
    };
    for (const std::wstring& path : paths)
        append(path);
    append({});
    return BlockOf(bytes.data(), bytes.size());
}

UniqueGlobal MakeEffectBlock(DWORD effect) {
    return BlockOf(&effect, sizeof(effect));
}

}  // namespace tessary
