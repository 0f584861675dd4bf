// The data object of a drag of files, as the shell hands it to a drop target.
#pragma once

#include <gtest/gtest.h>
#include <ole2.h>
#include <shlobj.h>

#include <cstring>
#include <string>
#include <vector>

namespace tessary::test {

// Lives on the stack: nobody keeps a reference to it.
class DroppedFiles final : public IDataObject {
  public:
    explicit DroppedFiles(const std::vector<std::wstring>& paths) {
        for (const std::wstring& path : paths)
            names_ += path + L'\0';
        names_ += L'\0';
    }

    HRESULT STDMETHODCALLTYPE GetData(FORMATETC* format, STGMEDIUM* medium) override {
        if (FAILED(QueryGetData(format))) return DV_E_FORMATETC;
        const size_t bytes = names_.size() * sizeof(wchar_t);
        *medium = {};
        medium->tymed = TYMED_HGLOBAL;
        medium->hGlobal = GlobalAlloc(GHND, sizeof(DROPFILES) + bytes);
        auto* const header = static_cast<DROPFILES*>(GlobalLock(medium->hGlobal));
        header->pFiles = sizeof(DROPFILES);
        header->fWide = TRUE;
        std::memcpy(header + 1, names_.data(), bytes);
        GlobalUnlock(medium->hGlobal);
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE QueryGetData(FORMATETC* format) override {
        return format->cfFormat == CF_HDROP ? S_OK : DV_E_FORMATETC;
    }

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID, void**) override { return E_NOINTERFACE; }
    ULONG STDMETHODCALLTYPE AddRef() override { return 1; }
    ULONG STDMETHODCALLTYPE Release() override { return 1; }
    HRESULT STDMETHODCALLTYPE GetDataHere(FORMATETC*, STGMEDIUM*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetCanonicalFormatEtc(FORMATETC*, FORMATETC*) override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE SetData(FORMATETC*, STGMEDIUM*, BOOL) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE EnumFormatEtc(DWORD, IEnumFORMATETC**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE DAdvise(FORMATETC*, DWORD, IAdviseSink*, DWORD*) override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE DUnadvise(DWORD) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE EnumDAdvise(IEnumSTATDATA**) override { return E_NOTIMPL; }

  private:
    std::wstring names_;  // each with its NUL, one more at the end
};

// Drops files as the shell does. The answer is the effect that the source is told.
inline DWORD Drop(HWND target, const std::vector<std::wstring>& paths,
                  DWORD allowed = DROPEFFECT_COPY) {
    DroppedFiles data(paths);
    // Where OLE keeps a window's registered target.
    auto* const registered = static_cast<IDropTarget*>(GetPropW(target, L"OleDropTargetInterface"));
    EXPECT_NE(registered, nullptr);
    if (registered == nullptr) return DROPEFFECT_NONE;
    DWORD entered = allowed;
    registered->DragEnter(&data, MK_LBUTTON, {}, &entered);
    DWORD dropped = allowed;
    registered->Drop(&data, MK_LBUTTON, {}, &dropped);
    EXPECT_EQ(dropped, entered);
    return dropped;
}

}  // namespace tessary::test
