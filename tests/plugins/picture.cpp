// GetPictureInfo, GetPicture and GetPreview of the test plug-ins.
#include <cstdlib>
#include <cstring>

#include "helpers/susiectl/susie_interface.h"
#include "tests/plugins/function.h"
#include "tests/plugins/misdeeds.h"
#include "tests/plugins/picture_blocks.h"
#include "tests/plugins/source.h"

namespace tessary::test {
namespace {

constexpr uint32_t kDescribeFlag = 0x80;

int Describe(const Script& script, const std::string& content, uint32_t flag,
             susie::PictureInfo* info) {
    if (script.Has("flag128") && !(flag & kDescribeFlag)) return susie::kNotImplemented;
    if (!content.starts_with("TST ")) return susie::kUnknownFormat;
    const auto claim = script.Text("info-record");
    const PictureSize size = claim ? ParseSize(*claim) : ParseSize(content.substr(4));
    *info = {};
    info->width = static_cast<int32_t>(size.width);
    info->height = static_cast<int32_t>(size.height);
    info->colorDepth = static_cast<int16_t>(size.depth);
    if (const auto text = script.Text("text")) info->hInfo = MakeBlock(*text + '\0');
    return susie::kSuccess;
}

// False when the callback asked to stop.
bool Report(const Script& script, int rows, susie::ProgressCallback progress, LONG_PTR userData) {
    if (userData != 0) return false;  // what hosts pass is 0
    const int count = script.Number("progress").value_or(rows + 1);
    for (int i = 0; i < count; ++i)
        if (progress(i, count - 1, userData) != 0 && !script.Has("ignore-abort")) return false;
    return true;
}

// What is no block of local memory, or one that cannot be read.
HLOCAL MakeForeign(const std::string& kind, const std::string& bytes) {
    if (kind == "malloc") return std::malloc(bytes.size());
    if (kind == "heap") return HeapAlloc(HeapCreate(0, 0, 0), 0, bytes.size());
    auto* const block = static_cast<char*>(MakeBlock(bytes, LMEM_FIXED));
    if (kind == "odd") return block + 2;
    if (kind == "inside") return block + 16;
    DWORD before = 0;
    constexpr size_t kPage = 4096;
    VirtualProtect(block + kPage, 1, PAGE_NOACCESS, &before);
    return block;
}

void HandOut(const Script& script, const PictureBlocks& blocks, HLOCAL* info, HLOCAL* bits) {
    if (script.Has("no-handles")) return;
    const UINT kind = script.Has("fixed") ? LMEM_FIXED : LMEM_MOVEABLE;
    const auto wild = reinterpret_cast<HLOCAL>(0x12345678);
    const bool isWild = script.Has("wild-handles");
    if (!script.Has("no-info")) *info = isWild ? wild : MakeBlock(blocks.info, kind);
    const auto foreign = script.Text("foreign");
    if (foreign)
        *bits = MakeForeign(*foreign, blocks.bits);
    else if (script.Has("same-handle"))
        *bits = *info;
    else if (!script.Has("no-bits"))
        *bits = isWild ? wild : MakeBlock(blocks.bits, kind);
}

int DecodeInto(void* frame, const std::string& content, susie::PictureRoom& room) {
    return Run({"GetPictureInto", frame, 7, content}, [&](const Script& script) -> int {
        if (!content.starts_with("TST ")) return susie::kUnknownFormat;
        if (script.Has("no-handles")) return susie::kSuccess;
        if (const auto size = script.Number("asks-only")) {
            void* block = nullptr;
            const bool hasRoom = room.take(&room, 40, *size, &block, &block) != susie::kNoRoom;
            return hasRoom ? susie::kReadError : susie::kOutOfMemory;
        }
        if (script.Has("twice")) PutInto(room, MakePicture({7, 7, 24}, script));
        PictureSize size = ParseSize(content.substr(4));
        if (script.Has("reduces") && room.size >= sizeof(room) && room.enough > 0) {
            size.width = static_cast<int>(room.enough);
        }
        const PictureBlocks blocks = MakePicture(size, script);
        return PutInto(room, blocks) ? susie::kSuccess : susie::kOutOfMemory;
    });
}

int Decode(const char* name, void* frame, const std::string& content, HLOCAL* info, HLOCAL* bits,
           susie::ProgressCallback progress, LONG_PTR userData) {
    return Run({name, frame, 7, content}, [&](const Script& script) -> int {
        if (!content.starts_with("TST ")) return susie::kUnknownFormat;
        const PictureSize size = ParseSize(content.substr(4));
        const int rows = static_cast<int>(size.height);
        if (!Report(script, rows, progress, userData)) return susie::kAborted;
        HandOut(script, MakePicture(size, script), info, bits);
        HandedOut().insert(HandedOut().end(), {*info, *bits});
        return susie::kSuccess;
    });
}

}  // namespace
}  // namespace tessary::test

using namespace tessary;
using namespace tessary::test;

extern "C" int __stdcall GetPictureInfo(const char* source, LONG_PTR length, uint32_t flag,
                                        susie::PictureInfo* info) {
    const std::string content = ReadSource(source, length, flag);
    return Run({"GetPictureInfo", __builtin_dwarf_cfa(), 4, content},
               [&](const Script& script) { return Describe(script, content, flag, info); });
}

extern "C" int __stdcall GetPicture(const char* source, LONG_PTR length, uint32_t flag,
                                    HLOCAL* info, HLOCAL* bits, susie::ProgressCallback progress,
                                    LONG_PTR userData) {
    const std::string content = ReadSource(source, length, flag);
    return Decode("GetPicture", __builtin_dwarf_cfa(), content, info, bits, progress, userData);
}

extern "C" int __stdcall GetPictureInto(const char* source, LONG_PTR length, uint32_t flag,
                                        susie::PictureRoom* room, void*, susie::ProgressCallback,
                                        LONG_PTR) {
    return DecodeInto(__builtin_dwarf_cfa(), ReadSource(source, length, flag), *room);
}

extern "C" int __stdcall GetPreview(const char* source, LONG_PTR length, uint32_t flag,
                                    HLOCAL* info, HLOCAL* bits, susie::ProgressCallback progress,
                                    LONG_PTR userData) {
    const std::string content = ReadSource(source, length, flag);
    return Decode("GetPreview", __builtin_dwarf_cfa(), content, info, bits, progress, userData);
}
