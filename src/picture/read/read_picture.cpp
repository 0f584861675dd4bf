#include "picture/read/read_picture.h"

#include <algorithm>
#include <chrono>
#include <utility>

#include "plugin/modSusie.h"

namespace tessary {
namespace {

bool IsStopped(const ReadWatch& watch) {
    return watch.isStopped && watch.isStopped();
}

ReadResult Stopped() {
    return {.isStopped = true};
}

enum class Archives { kEndTheSearch, kMakeRoom };

// Has one plug-in after the other decode it, or a page of it, until one can.
ReadResult Decode(Search search, Archives archives, const ReadWatch& watch, uint32_t page = 0) {
    ReadResult result;
    while (clsSusie* const plugin = search.Next()) {
        if (plugin->DllStyle() == kStyleArchive) {
            result = {.kind = kFileArchive, .plugin = plugin->DllName()};
            if (archives == Archives::kEndTheSearch) break;
            continue;
        }
        Picture picture;
        auto failure = FailureIn(*plugin, [&] {
            uint32_t duration = 0;
            if (page != 0) {
                picture = plugin->DecodeFrame(page, watch.progress, duration);
            } else {
                plugin->DecodePicture(DecodeTarget::kMemory,
                                      watch.takesOwnColors ? kDecodeInOwnColors : 0, watch.progress,
                                      {}, &picture, watch.enough);
            }
        });
        if (IsStopped(watch)) return Stopped();
        if (!failure) {
            const PictureFrames frames = page == 0 ? plugin->Frames() : PictureFrames();
            const bool isPage = page != 0 || frames.kind == FrameKind::kPages;
            return {.kind = kFilePicture,
                    .picture = std::move(picture),
                    .plugin = plugin->DllName(),
                    .frames = frames,
                    .page = isPage ? page + 1 : 0,
                    .damage = plugin->Damage()};
        }
        search.NoteFailure();
        if (result.kind == kFileArchive) continue;
        result.plugin = plugin->DllName();
        result.failure = std::move(failure);
    }
    result.refusal = search.LastRefusal();
    return result;
}

ReadResult DecodeFile(const std::wstring& path, const ReadWatch& watch, uint32_t page) {
    CollectionSusie& plugins = SusieCollection();
    ReadResult result = Decode(plugins.SearchFor(path), Archives::kEndTheSearch, watch, page);
    if (result.kind != kFileArchive) plugins.UnloadFile();
    return result;
}

// Until its end plug-ins may be bound to blocks.
struct BlockUse {
    ~BlockUse() { SusieCollection().UnloadMemory(); }
};

ReadResult DecodeBlock(HLOCAL block, const std::wstring& name, uint32_t page,
                       const ReadWatch& watch) {
    const BlockUse use;
    return Decode(SusieCollection().SearchFor(block, name), Archives::kMakeRoom, watch, page);
}

// A bitmap that was read, or, if it could not be, what plug-ins make of it: it is damaged, or no
// bitmap after all.
template <typename DecodeByPlugins>
ReadResult BitmapOr(Picture picture, std::wstring damage, const ReadWatch& watch,
                    DecodeByPlugins decodeByPlugins) {
    if (IsStopped(watch)) return Stopped();
    if (picture) {
        return {.kind = kFileBitmap, .picture = std::move(picture), .damage = std::move(damage)};
    }
    ReadResult result = decodeByPlugins();
    result.isBrokenBitmap = true;
    return result;
}

ReadResult ReadFile(const SourceFile& file, uint32_t page, const ReadWatch& watch) {
    const auto decode = [&] { return DecodeFile(file.path, watch, page); };
    if (file.kind != kFileBitmap || page != 0) return decode();
    Picture picture;
    std::wstring damage;
    ReadBitmapFile(file.path, picture, watch.progress, &damage);
    return BitmapOr(std::move(picture), std::move(damage), watch, decode);
}

ReadResult ReadBlock(HLOCAL block, const std::wstring& name, uint32_t page,
                     const ReadWatch& watch) {
    const auto decode = [&] { return DecodeBlock(block, name, page, watch); };
    if (!IsBitmapBlock(block) || page != 0) return decode();
    std::wstring damage;
    Picture picture = ReadBitmapBlock(block, watch.progress, damage);
    return BitmapOr(std::move(picture), std::move(damage), watch, decode);
}

template <typename Read>
ReadResult Timed(const Read& read) {
    const auto begin = std::chrono::steady_clock::now();
    ReadResult result = read();
    result.milliseconds =
        static_cast<uint32_t>(std::chrono::duration_cast<std::chrono::milliseconds>(
                                  std::chrono::steady_clock::now() - begin)
                                  .count());
    return result;
}

}  // namespace

void TellOrigin(ReadResult& read, PictureOrigin origin) {
    if (!read.picture) return;
    origin.plugin = read.plugin;
    origin.milliseconds = read.milliseconds;
    origin.page = read.page;
    origin.depth = read.picture.Header().bitCount;
    read.picture.SetOrigin(std::make_shared<const PictureOrigin>(std::move(origin)));
}

void TellOrigin(ReadResult& read, PictureOrigin origin, HLOCAL content) {
    const BlockLock lock(content);
    if (!read.picture || !lock) return;
    const auto head = lock.Bytes().first(std::min(lock.Size(), kMemberHead));
    origin.memberSize = lock.Size();
    origin.head.assign(head.begin(), head.end());
    TellOrigin(read, std::move(origin));
}

ReadResult ReadPicture(const SourceFile& file, const ReadWatch& watch) {
    return ReadPage(file, 0, watch);
}

ReadResult ReadPage(const SourceFile& file, uint32_t page, const ReadWatch& watch) {
    return Timed([&] { return ReadFile(file, page, watch); });
}

ReadResult ReadPicture(HLOCAL block, const std::wstring& name, const ReadWatch& watch,
                       uint32_t page) {
    return Timed([&] { return ReadBlock(block, name, page, watch); });
}

}  // namespace tessary
