#include "host/request_names.h"

#include "plugin/no_host.h"
#include "plugin/plugin_state.h"

namespace tessary {

const wchar_t* FunctionOf(HostOperation operation) {
    switch (operation) {
        case HostOperation::kLoad:
            return L"LoadLibrary";
        case HostOperation::kDescribe:
            return L"GetPlugInInfo";
        case HostOperation::kSupports:
            return L"IsSupported";
        case HostOperation::kMeasure:
            return L"GetPictureInfo";
        case HostOperation::kDecode:
            return L"GetPicture";
        case HostOperation::kList:
            return L"GetArchiveInfo";
        case HostOperation::kExtract:
            return L"GetFile";
        case HostOperation::kConfigure:
            return L"ConfigurationDlg";
        case HostOperation::kFrame:
            return L"GetFrame";
        default:
            return L"FreeLibrary";
    }
}

std::wstring LogNameOf(const HostRequest& request) {
    switch (request.operation) {
        case HostOperation::kDescribe:
            return L"GetPluginInfo";
        case HostOperation::kExtract:
            return std::wstring(L"GetFile") + (request.isFile ? L'S' : L'M') +
                   (request.folder ? L'S' : L'M');
        default:
            return FunctionOf(request.operation);
    }
}

PluginAnswer EndedAnswer(HostEnd end, HostOperation operation, uint32_t whyNoHost) {
    const wchar_t* const function = FunctionOf(operation);
    switch (end) {
        case HostEnd::kStopped:
            return {susie::kAborted, {}, {}};
        case HostEnd::kRefused:
            return {kResultUnexpected, {}, {}};
        case HostEnd::kHoarded:
            return {kResultCrashed, {}, {kPluginHoardedText, function}, ProcessEnd::kDied};
        case HostEnd::kNoHost:
            return {kResultUnexpected, {}, {NoHostText(whyNoHost), function}};
        case HostEnd::kGivenUp:
            return {kResultStopped, {}, {kPluginGivenUpText, function}};
        case HostEnd::kSilent:
            return {kResultCrashed, {}, {kPluginSilentText, function}, ProcessEnd::kSilent};
        default:
            return {kResultCrashed, {}, {kPluginCrashedText, function}, ProcessEnd::kDied};
    }
}

}  // namespace tessary
