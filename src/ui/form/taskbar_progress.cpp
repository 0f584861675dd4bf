#include "ui/form/taskbar_progress.h"

// The taskbar's interface needs the types of windows.h.
#include <shobjidl.h>

#include <algorithm>

#include "app/base/call_user.h"
#include "app/base/com_object.h"

namespace tessary {

void TaskbarProgress::Release::operator()(ITaskbarList3* list) const {
    list->Release();
}

TaskbarProgress::TaskbarProgress(HWND window)
    : window_(WindowWithButton(window)), session_(std::make_unique<ComSession>()) {
    void* list = nullptr;
    if (FAILED(CoCreateInstance(CLSID_TaskbarList, nullptr, CLSCTX_INPROC_SERVER, IID_ITaskbarList3,
                                &list))) {
        return;
    }
    list_.reset(static_cast<ITaskbarList3*>(list));
    if (FAILED(list_->HrInit())) list_.reset();
}

TaskbarProgress::~TaskbarProgress() {
    if (list_) list_->SetProgressState(window_, TBPF_NOPROGRESS);
}

void TaskbarProgress::SetProgress(int32_t position, int32_t maximum) {
    if (!list_) return;
    if (maximum <= 0) {
        list_->SetProgressState(window_, TBPF_INDETERMINATE);
        return;
    }
    list_->SetProgressState(window_, TBPF_NORMAL);
    list_->SetProgressValue(window_, static_cast<ULONGLONG>(std::clamp(position, 0, maximum)),
                            static_cast<ULONGLONG>(maximum));
}

}  // namespace tessary
