#include "host/host_notes.h"

#include <algorithm>
#include <atomic>
#include <cstring>

#include "app/base/text.h"

namespace tessary {
namespace {

constexpr std::wstring_view kFreeLibrary = L"FreeLibrary";
constexpr std::wstring_view kFunctions[] = {
    L"LoadLibrary", kFreeLibrary,  L"GetPluginInfo", L"IsSupported",      L"GetPictureInfo",
    L"GetPicture",  L"GetPreview", L"GetPrevew",     L"GetArchiveInfo",   L"GetFileInfo",
    L"GetFileMM",   L"GetFileSM",  L"GetFileMS",     L"GetFileSS",        L"ConfigurationDlg",
    L"OpenFrames",  L"GetFrame",   L"CloseFrames",   L"GetLastCondition", L"Thread",
    kWindowCall};

template <size_t kRoom>
void CopyCut(wchar_t (&target)[kRoom], std::wstring_view text) {
    const size_t count = std::min(text.size(), kRoom - 1);
    std::memcpy(target, text.data(), count * sizeof(wchar_t));
    target[count] = 0;
}

// Nothing when it has no end.
template <size_t kRoom>
std::optional<std::wstring> TextOf(const wchar_t (&text)[kRoom]) {
    const auto* const end = std::find(std::begin(text), std::end(text), L'\0');
    if (end == std::end(text)) return std::nullopt;
    return std::wstring(text, end);
}

struct Noted {
    bool isThere = false;
    std::optional<std::wstring> function;
    std::optional<std::wstring> plugin;
};

// Read once: somebody may still have the page.
Noted Read(const HostNote& note) {
    if (note.isThere == 0) return {};
    HostNote copy{};
    std::memcpy(copy.function, note.function, sizeof(copy.function));
    std::memcpy(copy.plugin, note.plugin, sizeof(copy.plugin));
    return {true, TextOf(copy.function), TextOf(copy.plugin)};
}

}  // namespace

void HostNote::Write(std::wstring_view calledFunction, std::wstring_view calledPlugin) {
    isThere = 0;
    std::atomic_signal_fence(std::memory_order_seq_cst);
    CopyCut(function, calledFunction);
    CopyCut(plugin, calledPlugin);
    std::atomic_signal_fence(std::memory_order_seq_cst);
    isThere = 1;
}

bool IsNotedFunction(std::wstring_view function) {
    return std::ranges::find(kFunctions, function) != std::end(kFunctions);
}

std::optional<PluginCall> CulpritOf(const HostNotes& notes, const PluginCall& asked,
                                    const std::set<std::wstring>& served) {
    const Noted call = Read(notes.call);
    const Noted thread = Read(notes.thread);
    const auto isReal = [&](const Noted& noted) {
        return noted.function && IsNotedFunction(*noted.function) && noted.plugin &&
               served.contains(ToUpper(*noted.plugin));
    };
    const auto named = [&](const Noted& noted) -> std::optional<PluginCall> {
        if (isReal(noted)) {
            const bool isAsked = EqualsIgnoreCase(*noted.plugin, asked.plugin);
            return PluginCall{*noted.function, *noted.plugin, isAsked ? asked.file : L""};
        }
        return asked.plugin.empty() ? std::nullopt : std::optional(asked);
    };
    if (!thread.isThere) return call.isThere ? named(call) : std::nullopt;
    const bool isKnown = thread.plugin && !thread.plugin->empty();
    if (!isKnown && thread.plugin) {
        // Nobody's, while what others' threads need may just be freed.
        const bool isFreed = call.function && *call.function == kFreeLibrary;
        return call.isThere && !isFreed ? named(call) : std::nullopt;
    }
    // Its own call tells more.
    const bool isSame = call.isThere && isReal(call) && call.plugin == thread.plugin;
    return named(isSame ? call : thread);
}

}  // namespace tessary
