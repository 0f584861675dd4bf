#include "picture/read/plugin_failure.h"

#include "plugin/result_text.h"

namespace tessary {

PluginFailure FailureOf(const clsSusie& plugin, const PluginError& error) {
    const auto* const answered = dynamic_cast<const DecodeError*>(&error);
    const std::wstring& lastError = plugin.ErrorString();
    PluginFailure failure{.result = answered != nullptr ? answered->Result() : kResultUnexpected,
                          .what = error.Description(),
                          .why = {},
                          .function = plugin.ErrorFunction(),
                          .lastError = lastError,
                          .condition = plugin.Condition().kind};
    if (!lastError.empty() && lastError != failure.what) {
        failure.why = lastError;
    } else if (answered != nullptr) {
        failure.why = ResultText(static_cast<int32_t>(failure.result & ~kPreviewResult));
    }
    return failure;
}

}  // namespace tessary
