#include "plugin/plugin_state.h"

#include "plugin/host_state.h"
#include "plugin/susie_library.h"

namespace tessary {

bool PluginCallUnderWay() {
    return Caller().isCallUnderWay;
}

bool HasPluginCrashed() {
    return Host().hasPluginCrashed;
}

std::wstring PluginsStoppedText() {
    const std::wstring& plugin = Host().damager;
    const std::wstring culprit = plugin.empty() ? L"プラグイン" : L"プラグイン " + plugin + L' ';
    return culprit +
           L"の異常でメモリーが壊れた可能性があるため、プラグインを停止しました。"
           L"プログラムを起動し直してください。";
}

bool PluginsAreStopped() {
    const SusieLibrary* const library = FindSusieLibrary();
    return library != nullptr && library->isMemoryDamaged() != 0;
}

}  // namespace tessary
