#include "ui/dialogs/save_dialog.h"

// The shell needs the types of windows.h.
#include <shlobj.h>
#include <shobjidl.h>

#include <memory>

#include "app/base/com_object.h"
#include "app/base/error.h"
#include "app/base/message_box.h"
#include "app/base/paths.h"
#include "app/base/task_modal.h"

namespace tessary {
namespace {

constexpr DWORD kDetailsButton = 1;

struct FreeTaskMemory {
    void operator()(wchar_t* text) const { CoTaskMemFree(text); }
};
using TaskText = std::unique_ptr<wchar_t, FreeTaskMemory>;

HWND WindowOf(IUnknown* dialog) {
    HWND window = nullptr;
    if (const auto inner = Query<IOleWindow>(dialog)) inner->GetWindow(&window);
    return window;
}

int TypeOf(IFileDialog* dialog) {
    UINT type = 1;
    dialog->GetFileTypeIndex(&type);
    return static_cast<int>(type);
}

// What stands in the edit field.
std::wstring TypedName(IFileDialog* dialog) {
    wchar_t* name = nullptr;
    if (FAILED(dialog->GetFileName(&name)) || name == nullptr) return {};
    return TaskText(name).get();
}

std::wstring ResultPath(IFileDialog* dialog) {
    IShellItem* result = nullptr;
    if (FAILED(dialog->GetResult(&result))) return {};
    const UniqueInterface<IShellItem> item(result);
    wchar_t* name = nullptr;
    if (FAILED(item->GetDisplayName(SIGDN_FILESYSPATH, &name))) return {};
    return TaskText(name).get();
}

// The full path of what was typed. Some systems put the chosen type's extension behind a name that
// has another one: it is taken off again.
std::wstring ChosenPath(IFileDialog* dialog, const std::wstring& extension) {
    const std::wstring path = ResultPath(dialog);
    const std::wstring typed = FileNameOf(TypedName(dialog));
    const bool isLonger = !typed.empty() && FileNameOf(path) == typed + L'.' + extension;
    return isLonger ? FolderOf(path) + typed : path;
}

// Hears what happens in the dialog. Lives on the stack, longer than the dialog: nobody counts its
// references.
class Listener final : public IFileDialogEvents, public IFileDialogControlEvents {
  public:
    explicit Listener(const SaveDialogRequest& request) : request_(request) {}
    ~Listener() = default;

    // IUnknown
    STDMETHODIMP QueryInterface(REFIID id, void** object) override {
        if (id == __uuidof(IUnknown) || id == __uuidof(IFileDialogEvents)) {
            *object = static_cast<IFileDialogEvents*>(this);
        } else if (id == __uuidof(IFileDialogControlEvents)) {
            *object = static_cast<IFileDialogControlEvents*>(this);
        } else {
            *object = nullptr;
            return E_NOINTERFACE;
        }
        return S_OK;
    }
    STDMETHODIMP_(ULONG) AddRef() override { return 1; }
    STDMETHODIMP_(ULONG) Release() override { return 1; }

    // IFileDialogEvents
    STDMETHODIMP OnFileOk(IFileDialog* dialog) override {
        return Trapped(HRESULT{S_FALSE}, [&]() -> HRESULT {
            const int type = TypeOf(dialog);
            const size_t index = static_cast<size_t>(type) - 1;
            const std::wstring path = ChosenPath(dialog, request_.types.at(index).extension);
            return !path.empty() && request_.accept(path, type) ? S_OK : S_FALSE;
        });
    }
    STDMETHODIMP OnTypeChange(IFileDialog* dialog) override {
        return Trapped(HRESULT{S_OK}, [&]() -> HRESULT {
            const std::wstring name = TypedName(dialog);
            if (!name.empty()) {
                dialog->SetFileName(request_.renamed(name, TypeOf(dialog)).c_str());
            }
            return S_OK;
        });
    }
    STDMETHODIMP OnFolderChanging(IFileDialog*, IShellItem*) override { return S_OK; }
    STDMETHODIMP OnFolderChange(IFileDialog*) override { return S_OK; }
    STDMETHODIMP OnSelectionChange(IFileDialog*) override { return S_OK; }
    STDMETHODIMP OnShareViolation(IFileDialog*, IShellItem*,
                                  FDE_SHAREVIOLATION_RESPONSE*) override {
        return E_NOTIMPL;
    }
    STDMETHODIMP OnOverwrite(IFileDialog*, IShellItem*, FDE_OVERWRITE_RESPONSE*) override {
        return E_NOTIMPL;
    }

    // IFileDialogControlEvents
    STDMETHODIMP OnButtonClicked(IFileDialogCustomize* customize, DWORD button) override {
        return Trapped(HRESULT{S_OK}, [&]() -> HRESULT {
            const auto dialog = Query<IFileDialog>(customize);
            if (button == kDetailsButton && dialog) {
                request_.onButton(WindowOf(dialog.get()), TypeOf(dialog.get()));
            }
            return S_OK;
        });
    }
    STDMETHODIMP OnItemSelected(IFileDialogCustomize*, DWORD, DWORD) override { return S_OK; }
    STDMETHODIMP OnCheckButtonToggled(IFileDialogCustomize*, DWORD, BOOL) override { return S_OK; }
    STDMETHODIMP OnControlActivating(IFileDialogCustomize*, DWORD) override { return S_OK; }

  private:
    const SaveDialogRequest& request_;
};

void Prepare(IFileDialog* dialog, const SaveDialogRequest& request) {
    std::vector<std::wstring> patterns;
    for (const SaveFileType& type : request.types)
        patterns.push_back(L"*." + type.extension);
    std::vector<COMDLG_FILTERSPEC> types;
    for (size_t i = 0; i < patterns.size(); ++i)
        types.push_back({request.types[i].description.c_str(), patterns[i].c_str()});
    dialog->SetFileTypes(static_cast<UINT>(types.size()), types.data());
    dialog->SetFileTypeIndex(static_cast<UINT>(request.type));
    dialog->SetFileName(request.name.c_str());
    // Whoever accepts the choice asks before a file is replaced: he knows the final name.
    dialog->SetOptions(FOS_FORCEFILESYSTEM | FOS_PATHMUSTEXIST | FOS_NOCHANGEDIR);

    void* folder = nullptr;
    if (!request.folder.empty() &&
        SUCCEEDED(SHCreateItemFromParsingName(request.folder.c_str(), nullptr, __uuidof(IShellItem),
                                              &folder))) {
        const UniqueInterface<IShellItem> start(static_cast<IShellItem*>(folder));
        dialog->SetFolder(start.get());
    }
    if (const auto customize = Query<IFileDialogCustomize>(dialog)) {
        customize->AddPushButton(kDetailsButton, request.buttonCaption.c_str());
    }
}

HRESULT Show(HWND owner, const SaveDialogRequest& request) {
    void* created = nullptr;
    const HRESULT result = CoCreateInstance(__uuidof(FileSaveDialog), nullptr, CLSCTX_INPROC_SERVER,
                                            __uuidof(IFileDialog), &created);
    if (FAILED(result)) return result;
    const UniqueInterface<IFileDialog> dialog(static_cast<IFileDialog*>(created));
    Prepare(dialog.get(), request);
    Listener listener(request);
    DWORD cookie = 0;
    const HRESULT advised = dialog->Advise(&listener, &cookie);
    if (FAILED(advised)) return advised;
    const TaskModal others(owner);
    const HRESULT shown = dialog->Show(owner);
    dialog->Unadvise(cookie);
    return shown;
}

}  // namespace

bool ShowSaveDialog(HWND owner, const SaveDialogRequest& request) {
    const HRESULT ole = OleInitialize(nullptr);
    const HRESULT result = Show(owner, request);
    if (SUCCEEDED(ole)) OleUninitialize();
    if (FAILED(result) && result != HRESULT_FROM_WIN32(ERROR_CANCELLED)) {
        ShowMessageBox(L"ファイルを選択するダイアログを表示できません。(エラー " +
                           std::to_wstring(HRESULT_CODE(result)) + L")",
                       MB_ICONEXCLAMATION);
    }
    return result == S_OK;
}

}  // namespace tessary
