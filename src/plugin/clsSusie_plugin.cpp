// The plug-in file: setting, loading and freeing it, and what it tells about itself.
#include <utility>

#include "app/base/message_box.h"
#include "app/base/paths.h"
#include "helpers/susiectl/susiectl.h"
#include "plugin/clsSusie.h"
#include "plugin/host_state.h"
#include "plugin/plugin_log.h"

namespace tessary {
namespace {

// Nobody wanted to wait for the answer any more.
bool WasGivenUp(const PluginAnswer& answer) {
    return answer.code == susie::kAborted;
}

}  // namespace

clsSusie::~clsSusie() {
    try {
        ReleasePlugin();
    } catch (...) {
        ShowMessageBox(L"クラスの開放エラーです");
    }
}

void clsSusie::RequireNoCall() {
    if (PluginCallUnderWay()) throw PluginError(kErrorCallUnderWay, kCallUnderWayText);
}

void clsSusie::SetError(std::wstring_view message, std::wstring_view function) {
    lastError_ = {std::wstring(message), std::wstring(function)};
    ++errorSerial_;
}

void clsSusie::Note(const PluginAnswer& answer) {
    if (answer.HasCrashed()) ++Caller().crashes;
    if (!answer.fault.message.empty()) SetError(answer.fault.message, answer.fault.function);
}

void clsSusie::SetDllName(const std::wstring& path) {
    Member(L"Property Let DllName(", [&] {
        RequireNoCall();
        ReleasePlugin();
        Connect(path);
        try {
            ReadPlugin();
        } catch (...) {
            ReleasePlugin();
            throw;
        }
        UnloadAfterUse();
    });
}

void clsSusie::SetKnownDll(const std::wstring& path, PluginTraits traits) {
    Member(L"Property Let DllName(", [&] {
        RequireNoCall();
        ReleasePlugin();
        Connect(path);
        traits_ = std::move(traits);
        isRemembered_ = true;
    });
}

void clsSusie::Connect(const std::wstring& path) {
    if (path.empty()) throw PluginError(kErrorInvalidArgument, kInvalidArgumentText);
    dllName_ = FullPathOf(path);
    connection_ = ConnectTo(dllName_);
}

void clsSusie::ReadPlugin() {
    const LoadedPlugin loaded = connection_->Load();
    Note(loaded);
    if (WasGivenUp(loaded)) throw PluginError(kErrorGivenUp, kNoPluginSetText);
    if (loaded.style == kStyleNone) {
        throw RefusedPluginError(connection_->IsLoaded(), loaded.loadError);
    }
    PluginDescription told = connection_->Describe();
    Note(told);
    if (WasGivenUp(told)) throw PluginError(kErrorGivenUp, kNoPluginSetText);
    // It would end the next process as well.
    if (told.end != ProcessEnd::kNone) throw RefusedPluginError(false, susiectl::kErrorCrashed);
    traits_ = std::move(static_cast<PluginTraits&>(told));
    traits_.style = loaded.style;
    keepLoaded_ = ErrorCount({}) != 0;
}

void clsSusie::ReleasePlugin() {
    Unbind();
    // Its windows go with it.
    if (!keepLoaded_ && !PluginCallUnderWay()) ReleaseModule();
    if (connection_ != nullptr) connection_->LeaveLoaded();
    connection_.reset();
    dllName_.clear();
    traits_ = {};
    isRemembered_ = false;
    loadFault_.reset();
    keepLoaded_ = false;
    extractsToDisk_ = false;
    isSetUp_ = false;
    crashed_.Clear();
}

void clsSusie::RequireModule() {
    RequireNoCall();
    if (PluginsAreStopped()) throw PluginError(kErrorPluginsStopped, PluginsStoppedText());
    if (connection_ == nullptr) throw PluginError(kErrorNoPluginSet, kNoPluginSetText);
    if (connection_->IsLoaded()) return;
    if (loadFault_) {
        SetError(loadFault_->message, loadFault_->function);
        throw PluginError(kErrorPluginNotAvailable, kPluginNotAvailableText);
    }
    // The file may have gone, or been replaced, since it was last loaded.
    const LoadedPlugin loaded = connection_->Load();
    Note(loaded);
    if (loaded.style == kStyleNone) {
        ReleaseModule();
        if (isRemembered_ && !WasGivenUp(loaded)) {
            if (loaded.loadError == susiectl::kErrorCrashed) loadFault_ = loaded.fault;
            Tell(false);
        }
        throw PluginError(kErrorPluginNotAvailable, kPluginNotAvailableText);
    }
    traits_.style = loaded.style;
    if (std::exchange(isRemembered_, false)) MeetRemembered();
}

// What is otherwise done when a plug-in is set.
void clsSusie::MeetRemembered() {
    keepLoaded_ = ErrorCount({}) != 0;
    Trapped([&] { NoteLoaded(dllName_); });
    if (told_) AskAnew();
}

void clsSusie::Tell(bool isGood) const {
    if (told_) Trapped([&] { told_(*this, isGood); });
}

void clsSusie::ReleaseModule() {
    if (connection_ != nullptr && connection_->IsLoaded()) Note(connection_->Unload());
}

void clsSusie::UnloadDLL() {
    if (!IsKeptLoaded() && bound_.IsEmpty() && !PluginCallUnderWay()) ReleaseModule();
}

void clsSusie::UnloadAfterUse() {
    if (autoUnload_) UnloadDLL();
}

void clsSusie::SetAutoUnload(bool autoUnload) {
    autoUnload_ = autoUnload;
    UnloadAfterUse();
}

std::wstring clsSusie::FileType(int32_t index) const {
    if (index < 0 || index > static_cast<int32_t>(kMaxPatterns)) {
        throw PluginError(kErrorInvalidArgument, kInvalidArgumentText);
    }
    if (index > 0) {
        const auto position = static_cast<size_t>(index) - 1;
        return position < traits_.patterns.size() ? traits_.patterns[position] : std::wstring();
    }
    std::wstring all;
    for (const std::wstring& pattern : traits_.patterns) {
        if (!all.empty()) all += L';';
        all += pattern;
    }
    return all;
}

int32_t clsSusie::ShowConfigurationDialog(HWND parent) {
    return Member(L"ShowConfigurationDialog(", [&] {
        RequireModule();
        int32_t result = -1;
        if (traits_.hasSettings) {
            const PluginAnswer answer = connection_->Configure(parent);
            Note(answer);
            result = answer.code;
            isSetUp_ = isSetUp_ || !answer.HasCrashed();
            if (!answer.HasCrashed()) RefreshInfo();
        }
        UnloadAfterUse();
        return result;
    });
}

void clsSusie::RefreshInfo() {
    if (!isSetUp_ || !IsLoaded() || PluginCallUnderWay()) return;
    AskAnew();
}

// After a crash what the plug-in has told before is better than nothing.
void clsSusie::AskAnew() {
    PluginDescription told = connection_->Describe();
    Note(told);
    if (WasGivenUp(told)) return;
    const bool isGood = told.HasSucceeded() && told.fault.message.empty();
    if (isGood) {
        told.style = traits_.style;
        traits_ = std::move(static_cast<PluginTraits&>(told));
    }
    Tell(isGood);
}

int32_t clsSusie::ErrorCount(std::wstring_view function) const {
    if (DllName().empty()) return 0;
    return Trapped(0, [&] { return ReadErrorCount(DllName(), function); });
}

void clsSusie::SpiSEHError(std::wstring_view function) {
    Member(L"SpiSEHError(", [&] {
        if (DllName().empty()) throw PluginError(kErrorNoPluginSet, kNoPluginSetText);
        IncrementErrorCount(DllName(), function);
    });
}

void clsSusie::ForgetErrors() {
    Member(L"ForgetErrors(", [&] {
        if (DllName().empty()) throw PluginError(kErrorNoPluginSet, kNoPluginSetText);
        ForgetFailures(DllName());
        crashed_.Clear();
        loadFault_.reset();
        keepLoaded_ = false;
        UnloadAfterUse();
    });
}

}  // namespace tessary
