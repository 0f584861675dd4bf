#include "ui/form/file_drag.h"

#include <ole2.h>
#include <shlobj.h>

#include <array>
#include <memory>
#include <utility>

#include "app/base/counted_object.h"
#include "ui/form/file_block.h"

namespace tessary {
namespace {

struct ReleaseObject {
    void operator()(IUnknown* object) const { object->Release(); }
};
template <class Interface>
using UniqueObject = std::unique_ptr<Interface, ReleaseObject>;

struct FreeList {
    void operator()(ITEMIDLIST* list) const { ILFree(static_cast<PIDLIST_RELATIVE>(list)); }
};

// The shell's own; null when it knows no such file.
UniqueObject<IDataObject> ShellDataOf(const std::wstring& path) {
    const std::unique_ptr<ITEMIDLIST, FreeList> file(
        path.empty() ? nullptr : reinterpret_cast<ITEMIDLIST*>(ILCreateFromPathW(path.c_str())));
    if (!file) return nullptr;
    IShellFolder* folder = nullptr;
    PCUITEMID_CHILD child = nullptr;
    if (FAILED(SHBindToParent(reinterpret_cast<PCIDLIST_ABSOLUTE>(file.get()),
                              IID_PPV_ARGS(&folder), &child))) {
        return nullptr;
    }
    const UniqueObject<IShellFolder> owner(folder);
    void* data = nullptr;
    folder->GetUIObjectOf(nullptr, 1, &child, IID_IDataObject, nullptr, &data);
    return UniqueObject<IDataObject>(static_cast<IDataObject*>(data));
}

FORMATETC FormatOf(UINT format) {
    return {static_cast<CLIPFORMAT>(format), nullptr, DVASPECT_CONTENT, -1, TYMED_HGLOBAL};
}

// What is there before the file is: the shell makes it of the finished one.
std::array<FORMATETC, 3> PromisedFormats() {
    return {FormatOf(CF_HDROP), FormatOf(RegisterClipboardFormatW(CFSTR_SHELLIDLIST)),
            FormatOf(RegisterClipboardFormatW(CFSTR_FILENAMEW))};
}

class FileData final : public Counted<IDataObject> {
  public:
    explicit FileData(DraggedFile file) : file_(std::move(file)) {}

    HRESULT STDMETHODCALLTYPE GetData(FORMATETC* format, STGMEDIUM* medium) override {
        if (format == nullptr || medium == nullptr) return E_POINTER;
        if (QueryGetData(format) != S_OK) return DV_E_FORMATETC;
        IDataObject* const files = Files();
        return files != nullptr ? files->GetData(format, medium) : E_FAIL;
    }
    HRESULT STDMETHODCALLTYPE GetDataHere(FORMATETC*, STGMEDIUM*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE QueryGetData(FORMATETC* format) override {
        if (format == nullptr) return E_POINTER;
        for (const FORMATETC& promised : PromisedFormats()) {
            if (format->cfFormat == promised.cfFormat && (format->tymed & TYMED_HGLOBAL) != 0)
                return S_OK;
        }
        return DV_E_FORMATETC;
    }
    HRESULT STDMETHODCALLTYPE GetCanonicalFormatEtc(FORMATETC*, FORMATETC* out) override {
        if (out == nullptr) return E_POINTER;
        out->ptd = nullptr;
        return DATA_S_SAMEFORMATETC;
    }
    // Nobody has anything to tell that is needed.
    HRESULT STDMETHODCALLTYPE SetData(FORMATETC*, STGMEDIUM*, BOOL) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE EnumFormatEtc(DWORD direction, IEnumFORMATETC** formats) override {
        if (direction != DATADIR_GET) return E_NOTIMPL;
        const auto promised = PromisedFormats();
        return SHCreateStdEnumFmtEtc(static_cast<UINT>(promised.size()), promised.data(), formats);
    }
    HRESULT STDMETHODCALLTYPE DAdvise(FORMATETC*, DWORD, IAdviseSink*, DWORD*) override {
        return OLE_E_ADVISENOTSUPPORTED;
    }
    HRESULT STDMETHODCALLTYPE DUnadvise(DWORD) override { return OLE_E_ADVISENOTSUPPORTED; }
    HRESULT STDMETHODCALLTYPE EnumDAdvise(IEnumSTATDATA**) override {
        return OLE_E_ADVISENOTSUPPORTED;
    }

  private:
    IDataObject* Files() {
        if (DraggedFile file = std::exchange(file_, {})) files_ = ShellDataOf(file());
        return files_.get();
    }

    DraggedFile file_;  // empty when it was asked
    UniqueObject<IDataObject> files_;
};

class Drag final : public Counted<IDropSource> {
  public:
    HRESULT STDMETHODCALLTYPE QueryContinueDrag(BOOL isEscapePressed, DWORD keys) override {
        if (isEscapePressed || (keys & MK_RBUTTON) != 0) return DRAGDROP_S_CANCEL;
        return (keys & MK_LBUTTON) == 0 ? DRAGDROP_S_DROP : S_OK;
    }
    HRESULT STDMETHODCALLTYPE GiveFeedback(DWORD) override { return DRAGDROP_S_USEDEFAULTCURSORS; }
};

}  // namespace

IDataObject* MakeFileData(DraggedFile file) {
    return std::make_unique<FileData>(std::move(file)).release();
}

DWORD DragFile(DraggedFile file) {
    const UniqueObject<IDataObject> data(MakeFileData(std::move(file)));
    const UniqueObject<IDropSource> source(std::make_unique<Drag>().release());
    DWORD effect = DROPEFFECT_NONE;
    const HRESULT result =
        DoDragDrop(data.get(), source.get(), DROPEFFECT_COPY | DROPEFFECT_LINK, &effect);
    return result == DRAGDROP_S_DROP ? effect : DROPEFFECT_NONE;
}

}  // namespace tessary
