#include "ui/form/file_drop_target.h"

#include <optional>
#include <utility>

#include "app/base/counted_object.h"
#include "app/base/error.h"
#include "ui/form/file_block.h"

namespace tessary {
namespace {

FORMATETC DroppedFilesFormat() {
    return {CF_HDROP, nullptr, DVASPECT_CONTENT, -1, TYMED_HGLOBAL};
}

std::vector<std::wstring> DroppedPaths(IDataObject& data) {
    FORMATETC format = DroppedFilesFormat();
    STGMEDIUM medium{};
    if (FAILED(data.GetData(&format, &medium))) return {};
    std::vector<std::wstring> paths = PathsIn(static_cast<HDROP>(medium.hGlobal));
    ReleaseStgMedium(&medium);
    return paths;
}

// The COM side.
class DropTarget final : public Counted<IDropTarget> {
  public:
    DropTarget(HWND window, FileDropTarget::Handlers handlers)
        : window_(window), handlers_(std::move(handlers)) {}

    HRESULT STDMETHODCALLTYPE DragEnter(IDataObject* data, DWORD /*keys*/, POINTL /*at*/,
                                        DWORD* effect) override {
        FORMATETC format = DroppedFilesFormat();
        holdsFiles_ = data != nullptr && data->QueryGetData(&format) == S_OK;
        return Answer(effect);
    }
    HRESULT STDMETHODCALLTYPE DragOver(DWORD /*keys*/, POINTL /*at*/, DWORD* effect) override {
        return Answer(effect);
    }
    HRESULT STDMETHODCALLTYPE DragLeave() override { return S_OK; }
    HRESULT STDMETHODCALLTYPE Drop(IDataObject* data, DWORD keys, POINTL at,
                                   DWORD* effect) override {
        const HRESULT result = DragEnter(data, keys, at, effect);
        if (FAILED(result) || *effect == DROPEFFECT_NONE) return result;
        // The source stays in front else, and the next keys go to the files selected there.
        SetForegroundWindow(GetAncestor(window_, GA_ROOT));
        Trapped([&] { handlers_.drop(DroppedPaths(*data)); });
        return S_OK;
    }

  private:
    // Dropped files are never moved away: a copy if the source offers one, else nothing.
    HRESULT Answer(DWORD* effect) const {
        if (effect == nullptr) return E_POINTER;
        const bool welcome = holdsFiles_ && (*effect & DROPEFFECT_COPY) != 0 &&
                             Trapped(false, [this] { return handlers_.accepts(); });
        *effect = welcome ? DROPEFFECT_COPY : DROPEFFECT_NONE;
        return S_OK;
    }

    HWND window_;
    FileDropTarget::Handlers handlers_;
    bool holdsFiles_ = false;
};

}  // namespace

FileDropTarget::~FileDropTarget() {
    Revoke();
}

bool FileDropTarget::Register(HWND window, Handlers handlers) {
    if (FAILED(OleInitialize(nullptr))) return false;
    IDropTarget* const target = std::make_unique<DropTarget>(window, std::move(handlers)).release();
    const bool registered = SUCCEEDED(RegisterDragDrop(window, target));
    target->Release();  // OLE holds a reference of its own
    if (registered) {
        window_ = window;
    } else {
        OleUninitialize();
    }
    return registered;
}

void FileDropTarget::Revoke() {
    if (window_ == nullptr) return;
    RevokeDragDrop(std::exchange(window_, nullptr));
    OleUninitialize();
}

}  // namespace tessary
