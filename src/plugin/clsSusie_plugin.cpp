// The plug-in file: setting, loading and freeing it, and what it tells about itself.
#include "app/base/message_box.h"
#include "app/base/paths.h"
#include "plugin/call_log.h"
#include "plugin/clsSusie.h"
#include "plugin/plugin_log.h"

namespace tessary {

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

void clsSusie::SetDllName(const std::wstring& path) {
    Member(L"Property Let DllName(", [&] {
        RequireNoCall();
        ReleasePlugin();
        if (path.empty()) throw PluginError(kErrorInvalidArgument, kInvalidArgumentText);
        calls_.SetPluginPath(FullPathOf(path));
        try {
            ReadPlugin();
        } catch (...) {
            ReleasePlugin();
            throw;
        }
        UnloadAfterUse();
    });
}

void clsSusie::ReadPlugin() {
    module_ = calls_.Load();
    const int32_t style = module_ == nullptr ? kStyleNone : calls_.BindAddresses(module_);
    if (style == kStyleNone) throw RefusedPluginError(module_ != nullptr, calls_.LoadError());
    supportConfigurationDialog_ = calls_.Address(SusieFunction::kConfigurationDlg) != nullptr;
    ReadInfo();
    dllStyle_ = style;
    keepLoaded_ = ErrorCount({}) != 0;
}

void clsSusie::ReadInfo() {
    const InfoCalls logged(DllName());
    patterns_ = ReadFilePatterns(calls_);
    productName_ = ReadProductName(calls_);
}

void clsSusie::ReleasePlugin() {
    Unbind();
    // Its windows go with it.
    if (!keepLoaded_ && !PluginCallUnderWay()) ReleaseModule();
    module_ = nullptr;  // one that must stay loaded stays until the process ends
    calls_.ClearAddresses();
    calls_.SetPluginPath({});
    dllStyle_ = kStyleNone;
    productName_.clear();
    patterns_.clear();
    supportConfigurationDialog_ = false;
    keepLoaded_ = false;
    extractsToDisk_ = false;
    isSetUp_ = false;
}

void clsSusie::RequireModule() {
    RequireNoCall();
    if (PluginsAreStopped()) throw PluginError(kErrorPluginsStopped, PluginsStoppedText());
    if (DllName().empty()) throw PluginError(kErrorNoPluginSet, kNoPluginSetText);
    if (module_ != nullptr) return;
    // The file may have gone, or been replaced, since it was last loaded.
    module_ = calls_.Load();
    const int32_t style = module_ == nullptr ? kStyleNone : calls_.BindAddresses(module_);
    if (style == kStyleNone) {
        ReleaseModule();
        throw PluginError(kErrorPluginNotAvailable, kPluginNotAvailableText);
    }
    dllStyle_ = style;
}

void clsSusie::ReleaseModule() {
    if (module_ == nullptr) return;
    calls_.Free(std::exchange(module_, nullptr));
    if (GetModuleHandleW(ExtendedPath(DllName()).c_str()) == nullptr) calls_.ClearAddresses();
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
        return position < patterns_.size() ? patterns_[position] : std::wstring();
    }
    std::wstring all;
    for (const std::wstring& pattern : patterns_) {
        if (!all.empty()) all += L';';
        all += pattern;
    }
    return all;
}

bool clsSusie::Claims(std::wstring_view upperName) const {
    return !upperName.empty() && MatchesAnyPattern(upperName, patterns_);
}

bool clsSusie::Names(std::wstring_view upperName) const {
    return !upperName.empty() && MatchesNamingPattern(upperName, patterns_);
}

int32_t clsSusie::ShowConfigurationDialog(HWND parent) {
    return Member(L"ShowConfigurationDialog(", [&] {
        RequireModule();
        const int32_t result = supportConfigurationDialog_ ? calls_.ConfigurationDlg(parent) : -1;
        if (supportConfigurationDialog_ && result != kResultCrashed) {
            isSetUp_ = true;
            RefreshInfo();
        }
        UnloadAfterUse();
        return result;
    });
}

// After a crash what the plug-in has told before is better than nothing.
void clsSusie::RefreshInfo() {
    if (!isSetUp_ || module_ == nullptr || PluginCallUnderWay()) return;
    const uint32_t before = calls_.ErrorSerial();
    FilePatterns patterns = patterns_;
    std::wstring productName = productName_;
    ReadInfo();
    if (calls_.ErrorSerial() == before) return;
    patterns_ = std::move(patterns);
    productName_ = std::move(productName);
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
        calls_.ForgetCrashes();
        keepLoaded_ = false;
        UnloadAfterUse();
    });
}

}  // namespace tessary
