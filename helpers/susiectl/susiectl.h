// susiectl.dll: calls the functions of a Susie plug-in by address under a crash guard, loads and
// frees plug-in files, and tells a file's format from its content.
//
// Every entry is __stdcall. The calling entries take the plug-in function's address first and
// then the interface's own arguments. They answer the plug-in's result, -1 for a null address, and
// 255 when the plug-in crashed: the crash is contained and the process goes on. After each call the
// processor's registers, floating-point and direction state, the stack pointer, the current folder
// and the error modes are as they were before it. Calls may be nested, from the progress callback.
// Want of memory in this library itself is answered susie::kOutOfMemory, or as a failed load.
//
// What an exception in the calling thread says is contained, also in window procedures that the
// system calls, with three limits: a plug-in may overwrite 64 KB of the stack above its own, its
// DllMain none, and its window procedures not beyond the system's part of the stack while the host
// itself is in a message of the system's. Where the crash of a DllMain leaves the system's loader
// held, the process ends, as below. What asks the system to end the
// process (ExitProcess, abort, TerminateProcess, a compiler's fail-fast checks), crashes in threads
// of the plug-in's own and damage to the heap that shows later are not. An exception on the way
// back from a crash ends the process at once, with the status of a damaged heap (0xC0000374).
#pragma once

#include "helpers/susiectl/susie_interface.h"

namespace tessary::susiectl {

constexpr int kCrashed = 255;
constexpr int kNotExported = -1;
constexpr unsigned long kErrorCrashed = 0x200000FF;  // of the errors that are left to programs

// What GetFileInformation answers; anything else than these is "none of them".
constexpr int kContentUnknown = -1;  // not readable, or no known signature
constexpr int kContentBmp = 0;
constexpr int kContentPng = 1;
constexpr int kContentJpeg = 2;
constexpr int kContentGif = 3;
constexpr int kContentLzh = 16;
constexpr int kContentZip = 17;

// Loads a plug-in file; null when it is missing, no DLL for this process's architecture, or crashes
// while it is loaded. GetLastError tells the system's reason then, kErrorCrashed after a crash. No
// system message box appears; its own folder and the system's are searched for what it needs.
using SPILoadLibraryFunction = HMODULE(__stdcall*)(const char* path);
using SPILoadLibraryWFunction = HMODULE(__stdcall*)(const wchar_t* path);

// Frees a plug-in file; windows of it in the calling thread are destroyed before. Non-zero for
// success; 0 also when a thread of the plug-in's or a window that is not its own would run into its
// code.
using SPIFreeLibraryFunction = int(__stdcall*)(HMODULE module);

// Non-zero while freeing a plug-in would take something away: it shows windows of its own in the
// calling thread, as settings windows that stay when the call returns, or runs threads.
using SPIIsInUseFunction = int(__stdcall*)(HMODULE module);

// Non-zero once a crash has left a heap of the process damaged, or was one of the heap's own
// functions: whoever allocates next may crash as well. It stays so.
using SPIIsMemoryDamagedFunction = int(__stdcall*)();

// Calls a function of the host's, `int __stdcall (LONG_PTR)`, that handles what a plug-in has
// handed out, and contains its crash as a plug-in's. 0 for a crash or when there is no memory to
// guard it; else what the function answers. Cheap. From any thread.
using SPICallGuardedFunction = int(__stdcall*)(FARPROC function, LONG_PTR argument);

// A plug-in that writes behind the buffer does not destroy what is there.
using GetPluginInfoEntry = int(__stdcall*)(FARPROC function, int infoNumber, char* buffer,
                                           int bufferLength);

// `header`: null for a file, whose first 2048 bytes are then read here, padded with zeros, and
// given to the plug-in; a file that cannot be read is answered 0 without asking it. Else the
// address of at least 2048 readable bytes.
using IsSupportedEntry = int(__stdcall*)(FARPROC function, const char* fileName,
                                         const void* header);
using GetPictureInfoEntry = int(__stdcall*)(FARPROC function, const char* source, LONG_PTR length,
                                            uint32_t flag, susie::PictureInfo* info);
// Also for GetPreview. `progress` may be null. It is called in the calling thread only, under the
// caller's floating-point state, and with the caller's `userData`, whatever the plug-in passes.
using GetPictureEntry = int(__stdcall*)(FARPROC function, const char* source, LONG_PTR length,
                                        uint32_t flag, HLOCAL* info, HLOCAL* bits,
                                        susie::ProgressCallback progress, LONG_PTR userData);
using GetArchiveInfoEntry = int(__stdcall*)(FARPROC function, const char* source, LONG_PTR length,
                                            uint32_t flag, HLOCAL* members);
using GetFileInfoEntry = int(__stdcall*)(FARPROC function, const char* source, LONG_PTR length,
                                         const char* fileName, uint32_t flag,
                                         susie::FileInfo* info);
using GetFileEntry = int(__stdcall*)(FARPROC function, const char* source, LONG_PTR length,
                                     char* destination, uint32_t flag,
                                     susie::ProgressCallback progress, LONG_PTR userData);
using ConfigurationDlgEntry = int(__stdcall*)(FARPROC function, HWND parent,
                                              int configurationFunction);
// For entries that plug-ins may have beside the nine.
using GetLastConditionEntry = int(__stdcall*)(FARPROC function, wchar_t* text, int length);
using OpenFramesEntry = int(__stdcall*)(FARPROC function, const char* source, LONG_PTR length,
                                        uint32_t flag, susie::FrameList* list, void** frames);
using GetFrameEntry = int(__stdcall*)(FARPROC function, void* frames, uint32_t index,
                                      uint32_t* duration, susie::PictureRoom* room,
                                      susie::ProgressCallback progress, LONG_PTR userData);
using CloseFramesEntry = int(__stdcall*)(FARPROC function, void* frames);

// The format that a file's first bytes show: one of the kContent… values.
using GetFileInformationFunction = int(__stdcall*)(const char* path);
using GetFileInformationWFunction = int(__stdcall*)(const wchar_t* path);

// The exported names, in the order of the types above.
inline constexpr char kSPILoadLibrary[] = "SPILoadLibrary";
inline constexpr char kSPILoadLibraryW[] = "SPILoadLibraryW";
inline constexpr char kSPIFreeLibrary[] = "SPIFreeLibrary";
inline constexpr char kSPIIsInUse[] = "SPIIsInUse";
inline constexpr char kSPIIsMemoryDamaged[] = "SPIIsMemoryDamaged";
inline constexpr char kSPICallGuarded[] = "SPICallGuarded";
inline constexpr char kGetPluginInfo[] = "GetPluginInfo";
inline constexpr char kIsSupported[] = "IsSupported";
inline constexpr char kGetPictureInfo[] = "GetPictureInfo";
inline constexpr char kGetPicture[] = "GetPicture";
inline constexpr char kGetPreview[] = "GetPreview";
inline constexpr char kGetArchiveInfo[] = "GetArchiveInfo";
inline constexpr char kGetFileInfo[] = "GetFileInfo";
inline constexpr char kGetFile[] = "GetFile";
inline constexpr char kConfigurationDlg[] = "ConfigurationDlg";
inline constexpr char kGetLastCondition[] = "GetLastCondition";
inline constexpr char kOpenFrames[] = "OpenFrames";
inline constexpr char kGetFrame[] = "GetFrame";
inline constexpr char kCloseFrames[] = "CloseFrames";
inline constexpr char kGetFileInformation[] = "GetFileInformation";
inline constexpr char kGetFileInformationW[] = "GetFileInformationW";

}  // namespace tessary::susiectl
