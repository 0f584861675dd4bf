#include "host32/page_notes.h"

namespace tessary {

void PageNotes::OnCall(const PluginCall& call) {
    if (!isDecided_) page_.call.Write(call.function, call.plugin);
}

void PageNotes::OnReturn() {
    if (!isDecided_) page_.call.Clear();
}

void PageNotes::OnFailure(const PluginCall& call) {
    failures_.push_back(call.function);
}

void PageNotes::OnThreadCrash(const std::wstring& plugin) noexcept {
    if (!isDecided_.exchange(true)) page_.thread.Write(L"Thread", plugin);
}

}  // namespace tessary
