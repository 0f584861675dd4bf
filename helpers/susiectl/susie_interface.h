// The Susie plug-in interface (version 00IN picture plug-ins, 00AM archive plug-ins) as its public
// documents give it: the records, result codes and entry points that a host, susiectl.dll and our
// own plug-ins share. Every entry is __stdcall, every text is in the system's ANSI code page.
#pragma once

#include <windows.h>

#include <cstddef>
#include <cstdint>

namespace tessary::susie {

// What a plug-in answers. Anything outside the table is passed on as it came.
enum Result : int32_t {
    kNotImplemented = -1,  // the function is there but does nothing
    kSuccess = 0,
    kAborted = 1,  // the progress callback asked to stop
    kUnknownFormat = 2,
    kBrokenData = 3,
    kOutOfMemory = 4,
    kMemoryError = 5,  // a block could not be locked
    kReadError = 6,
    kReserved = 7,  // some plug-ins: the window could not be opened
    kInternalError = 8,
};

// Low three bits of every `flag` argument: what `source` is. The other bits are the plug-in's
// business.
constexpr uint32_t kSourceFile = 0;
constexpr uint32_t kSourceMemory = 1;

// Byte count that every plug-in may read behind a header block given to IsSupported.
constexpr size_t kHeaderBlockSize = 2048;

// time_t of the plug-in's own compiler: 32 bits in 32-bit plug-ins, 64 in 64-bit ones.
using SusieTime = INT_PTR;

#pragma pack(push, 1)
// Answer of GetPictureInfo: 26 bytes in 32-bit plug-ins. `hInfo` is a local-memory block that the
// caller frees.
struct PictureInfo {
    int32_t left;
    int32_t top;
    int32_t width;
    int32_t height;
    uint16_t xDensity;
    uint16_t yDensity;
    int16_t colorDepth;
    HLOCAL hInfo;
};

// One archive member: 428 bytes in 32-bit plug-ins (444 in 64-bit ones). GetArchiveInfo answers a
// local-memory block of these; the first record whose method begins with a zero byte ends it.
struct FileInfo {
    uint8_t method[8];   // compression method, text
    ULONG_PTR position;  // opaque to the host: an index, an id or an offset
    ULONG_PTR compressedSize;
    ULONG_PTR fileSize;
    SusieTime timestamp;  // seconds since 1970
    char path[200];
    char fileName[200];
    uint32_t crc;
};
#pragma pack(pop)

#ifdef _WIN64
static_assert(sizeof(PictureInfo) == 30 && sizeof(FileInfo) == 444);
#else
static_assert(sizeof(PictureInfo) == 26 && sizeof(FileInfo) == 428);
#endif

// Called by a plug-in while it works: `done` of `total`, and the caller's own value. Non-zero asks
// it to stop.
using ProgressCallback = int(__stdcall*)(int done, int total, LONG_PTR userData);

// The nine exported entries. `source` is a file name or the address of a block, as the low bits of
// `flag` say; `length` is then an offset into the file or the block's size.
using GetPluginInfoFunction = int(__stdcall*)(int infoNumber, char* buffer, int bufferLength);
using IsSupportedFunction = int(__stdcall*)(const char* fileName, const void* header);
using GetPictureInfoFunction = int(__stdcall*)(const char* source, LONG_PTR length, uint32_t flag,
                                               PictureInfo* info);
using GetPictureFunction = int(__stdcall*)(const char* source, LONG_PTR length, uint32_t flag,
                                           HLOCAL* info, HLOCAL* bits, ProgressCallback progress,
                                           LONG_PTR userData);
using GetArchiveInfoFunction = int(__stdcall*)(const char* source, LONG_PTR length, uint32_t flag,
                                               HLOCAL* members);
using GetFileInfoFunction = int(__stdcall*)(const char* source, LONG_PTR length,
                                            const char* fileName, uint32_t flag, FileInfo* info);
// `destination` is a folder's name, or the address of a handle that receives the block, as bits 8
// to 10 of `flag` say (0: file, 1: memory).
using GetFileFunction = int(__stdcall*)(const char* source, LONG_PTR length, char* destination,
                                        uint32_t flag, ProgressCallback progress,
                                        LONG_PTR userData);
using ConfigurationDlgFunction = int(__stdcall*)(HWND parent, int function);

// Not of the interface: an entry that plug-ins may have beside the nine (docs/plugin-extension.md).
// Tells about this thread's last call of GetPicture, GetPreview, GetFrame, GetArchiveInfo,
// GetFileInfo or GetFile in this plug-in, in one of the values of Condition. `text`: room for
// `length` UTF-16 units, or null; receives a text for the user that ends with NUL and may be empty.
using GetLastConditionFunction = int(__stdcall*)(wchar_t* text, int length);

// Another such entry: as GetPicture, which is called in its place, for hosts that take a picture
// with alpha. Transparent pictures then have 32 bits per pixel with four masks behind the 40-byte
// header (BI_ALPHABITFIELDS, or BI_BITFIELDS in a longer one), not multiplied by alpha.
using GetPictureWithAlphaFunction = GetPictureFunction;

// A third one, called in place of that by hosts that have memory for the picture. The host's
// record, which may be longer than this, stays for the time of the call.
struct PictureRoom {
    uint32_t size;  // of the record
    // Answers a value of Room, and from kRoom on the addresses of two blocks of these sizes in
    // bytes. What was answered before counts no more. On the thread of the call.
    int(__stdcall* take)(PictureRoom* room, SIZE_T infoSize, SIZE_T bitsSize, void** info,
                         void** bits);
    uint32_t wishes;  // bits of RoomWish
    uint32_t enough;  // pixels; above 0: the picture may come smaller, with a longer side of that
};
enum RoomWish : uint32_t {
    kWishesOwnColors = 1,  // colours as they are stored, with their profile, rather than in sRGB
};
enum Room : int {
    kNoRoom = 0,  // there is no memory
    kRoom = 1,    // anything may stand there
    kRoomOfZeros = 2,
};
using GetPictureIntoFunction = int(__stdcall*)(const char* source, LONG_PTR length, uint32_t flag,
                                               PictureRoom* room, void* reserved,
                                               ProgressCallback progress, LONG_PTR userData);

// Three more, for sources of several pictures. What OpenFrames tells of them:
struct FrameList {
    uint32_t size;    // of the record
    int32_t kind;     // a value of FrameKind
    uint32_t count;   // below 2: there is nothing to step through
    uint32_t rounds;  // how often an animation is played; 0: endlessly
};
enum FrameKind : int32_t {
    kFrameAnimation = 1,
    kFramePages = 2,  // each a picture of its own, the first that of GetPicture
};
// `frames` receives what the plug-in wants to know of the source later, or null where it opens
// nothing. Until CloseFrames a block stays where it is; a file may change.
using OpenFramesFunction = int(__stdcall*)(const char* source, LONG_PTR length, uint32_t flag,
                                           FrameList* list, void** frames);
// Any frame, from 0; a whole picture, as GetPictureInto has it. `duration`: receives milliseconds.
using GetFrameFunction = int(__stdcall*)(void* frames, uint32_t index, uint32_t* duration,
                                         PictureRoom* room, void* reserved,
                                         ProgressCallback progress, LONG_PTR userData);
using CloseFramesFunction = int(__stdcall*)(void* frames);

// Below 0: a plug-in without an answer. What a host does not know is to it as kConditionNone.
enum Condition : int32_t {
    kConditionNone = 0,     // nothing to tell
    kConditionDamaged = 1,  // damaged or cut short; what could be read was delivered
    kConditionPasswordNeeded = 2,
    kConditionVolumeMissing = 3,       // part of a set of volumes, of which another is needed
    kConditionDirectoryEncrypted = 4,  // the list of the members itself is encrypted
    kConditionKindNotRead = 5,         // a kind or method that the plug-in does not do
};

// Destination bits of GetFile's `flag`.
constexpr uint32_t kDestinationFile = 0;
constexpr uint32_t kDestinationMemory = 0x100;

// `function` of ConfigurationDlg.
constexpr int kConfigurationAbout = 0;
constexpr int kConfigurationSettings = 1;

}  // namespace tessary::susie
