// How the process stands with its plug-ins.
#pragma once

#include <string>

namespace tessary {

// Whether a plug-in is being called at the moment. Plug-ins handle window messages while they work
// (in message boxes, progress callbacks, settings windows), so that the user can ask for more
// meanwhile: nothing that a call may be using must be changed then, and no other call be made.
bool PluginCallUnderWay();

// The error of a plug-in that has crashed in a call.
inline constexpr wchar_t kPluginCrashedText[] = L"SPIファイル内の関数で致命的エラーが発生しました";

// The error of one that gave no sign of life until its process was ended.
inline constexpr wchar_t kPluginSilentText[] = L"プラグインが応答しません";

// The error of one whose process was ended because it had taken too much memory.
inline constexpr wchar_t kPluginHoardedText[] =
    L"プラグインがメモリーを使いすぎたため、終了させました";

// The error of one that is not called any more because it has ended too many processes
// (plugin_ends.h).
inline constexpr wchar_t kPluginGivenUpText[] =
    L"何度も異常終了したため、このプラグインの使用を止めています";

// Whether a plug-in has crashed in this process, and was caught.
bool HasPluginCrashed();

// Whether a plug-in's crash has damaged the program's memory, or may have. No plug-in is called any
// more then, loaded or freed: whatever it allocated might crash, and be blamed for it. It stays so
// until the program is started anew, which PluginsStoppedText tells the user.
bool PluginsAreStopped();
// The sentence for the user, with the name of the plug-in that was being called then.
std::wstring PluginsStoppedText();

}  // namespace tessary
