// Drags of files, as the shell makes them.
#pragma once

#include <gtest/gtest.h>
#include <shlobj.h>

#include <string>
#include <vector>

namespace tessary::test {

// Drops files of one folder. The answer is the effect that the source is told.
inline DWORD Drop(HWND target, const std::vector<std::wstring>& paths,
                  DWORD allowed = DROPEFFECT_COPY) {
    std::vector<PIDLIST_ABSOLUTE> files;
    std::vector<PCUITEMID_CHILD> names;
    for (const std::wstring& path : paths) {
        files.push_back(ILCreateFromPathW(path.c_str()));
        names.push_back(ILFindLastID(files.back()));
    }
    IShellFolder* folder = nullptr;
    SHBindToParent(files[0], IID_PPV_ARGS(&folder), nullptr);
    void* found = nullptr;
    folder->GetUIObjectOf(nullptr, static_cast<UINT>(names.size()), names.data(), IID_IDataObject,
                          nullptr, &found);
    auto* const data = static_cast<IDataObject*>(found);
    // Where OLE keeps a window's registered target.
    auto* const registered = static_cast<IDropTarget*>(GetPropW(target, L"OleDropTargetInterface"));
    DWORD dropped = allowed;
    registered->DragEnter(data, MK_LBUTTON, {}, &allowed);
    registered->Drop(data, MK_LBUTTON, {}, &dropped);
    EXPECT_EQ(dropped, allowed);
    data->Release();
    folder->Release();
    for (const PIDLIST_ABSOLUTE file : files)
        ILFree(file);
    return dropped;
}

}  // namespace tessary::test
