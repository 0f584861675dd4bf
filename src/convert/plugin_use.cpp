#include "convert/plugin_use.h"

#include "app/base/error.h"
#include "plugin/modSusie.h"

namespace tessary {

PluginUse::PluginUse(const std::wstring& key) : plugin_(SusieCollection().Item(key)) {}

PluginUse::~PluginUse() {
    if (plugin_ != nullptr && plugin_->IsBound()) {
        Trapped([&] { plugin_->SetFile({}); });
    }
}

bool PluginUse::Bind(const std::wstring& path) const {
    return plugin_ != nullptr && Trapped(false, [&] {
               plugin_->SetFile(path);
               return true;
           });
}

std::wstring PluginUse::ErrorString() const {
    return plugin_ == nullptr ? std::wstring() : plugin_->ErrorString();
}

}  // namespace tessary
