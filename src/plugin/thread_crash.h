// Crashes in threads that plug-ins have left behind. No guard contains them: they end the process,
// and whose call is under way then says nothing about whose thread it was.
#pragma once

#include <windows.h>

#include <string>

namespace tessary {

// To be called behind each loading of a plug-in, by the thread that calls plug-ins. From then on a
// crash of another thread in the plug-in's code, or where that has been, is held against it in the
// call log; any other one while a plug-in is being freed is held against nobody.
void WatchThreadsOf(HMODULE module, const std::wstring& plugin);

// The plug-in in whose code the address is, or has been; empty: nobody's.
std::wstring PluginAt(const void* address);

}  // namespace tessary
