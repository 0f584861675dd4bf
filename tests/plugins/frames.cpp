// OpenFrames, GetFrame and CloseFrames of the test plug-ins.
#include <cstdio>
#include <memory>

#include "helpers/susiectl/susie_interface.h"
#include "tests/plugins/function.h"
#include "tests/plugins/picture_blocks.h"
#include "tests/plugins/source.h"

using namespace tessary;
using namespace tessary::test;

namespace {

// A file is read anew each time, a block where it was when it was opened.
struct Opened {
    std::string name;
    const char* source;
    LONG_PTR length;
    uint32_t flag;

    std::string Content() const {
        return ReadSource(name.empty() ? source : name.c_str(), length, flag);
    }
};

}  // namespace

extern "C" int __stdcall OpenFrames(const char* source, LONG_PTR length, uint32_t flag,
                                    susie::FrameList* list, void** frames) {
    return Run({"OpenFrames", __builtin_dwarf_cfa(), 5, ReadSource(source, length, flag)},
               [&](const Script& script) -> int {
                   const std::string told = script.Text("frames").value_or("");
                   if (std::sscanf(told.c_str(), "%d:%u:%u", &list->kind, &list->count,
                                   &list->rounds) != 3) {
                       return susie::kNotImplemented;
                   }
                   if (script.Has("null-frames")) return susie::kSuccess;
                   const bool isFile = (flag & 7) == susie::kSourceFile;
                   *frames =
                       std::make_unique<Opened>(Opened{isFile ? source : "", source, length, flag})
                           .release();
                   return susie::kSuccess;
               });
}

extern "C" int __stdcall GetFrame(void* frames, uint32_t index, uint32_t* duration,
                                  susie::PictureRoom* room, void*, susie::ProgressCallback,
                                  LONG_PTR) {
    const std::string content = static_cast<Opened*>(frames)->Content();
    return Run({"GetFrame", __builtin_dwarf_cfa(), 7, content}, [&](const Script& script) -> int {
        PictureSize size = ParseSize(content.substr(4));
        size.width += index;
        *duration = 10 * index;
        return PutInto(*room, MakePicture(size, script)) ? susie::kSuccess : susie::kOutOfMemory;
    });
}

extern "C" int __stdcall CloseFrames(void* frames) {
    const std::unique_ptr<Opened> opened(static_cast<Opened*>(frames));
    return Run({"CloseFrames", __builtin_dwarf_cfa(), 1, opened->Content()},
               [](const Script&) { return 0; });
}
