// The entries that call the functions of a plug-in.
#include <algorithm>
#include <vector>

#include "helpers/susiectl/entry.h"
#include "helpers/susiectl/guard.h"
#include "helpers/susiectl/heap_check.h"
#include "helpers/susiectl/input_file.h"
#include "helpers/susiectl/leftover_windows.h"
#include "helpers/susiectl/progress.h"
#include "helpers/susiectl/susiectl.h"

namespace tessary::susiectl {
namespace {

// Plug-ins write and read a little, sometimes a lot, behind the blocks they are given.
constexpr size_t kSlack = 4096;

// What plug-ins get for the value that goes with the progress callback: ours needs none of theirs,
// and some use it.
constexpr ULONG_PTR kNoUserData = 0;

// A caller's structure or text buffer, lent to a plug-in as a bigger copy.
class LentBlock {
  public:
    LentBlock(void* block, size_t size) : block_(static_cast<std::byte*>(block)), size_(size) {
        if (!block_) return;
        copy_.resize(size_ + kSlack);
        std::copy_n(block_, size_, copy_.begin());
    }
    ULONG_PTR Address() { return block_ ? Word(copy_.data()) : 0; }
    void Return() const {
        if (block_) std::copy_n(copy_.begin(), size_, block_);
    }

  private:
    std::byte* block_;
    size_t size_;
    std::vector<std::byte> copy_;
};

int Call(FARPROC function, std::initializer_list<ULONG_PTR> arguments, HostProgress progress = {}) {
    const KnownWindows windows;
    const auto answer = GuardedCall(function, arguments, Net::kSpread, progress);
    // The program disables its windows only in scopes that end where they began. So it was the
    // plug-in, for a dialog that is over or that it no longer watches.
    windows.EnableAgain();
    if (answer) return static_cast<int>(*answer);
    windows.DestroyLeftovers(function);
    return kCrashed;
}

int CallAndReturn(LentBlock& block, FARPROC function, std::initializer_list<ULONG_PTR> arguments) {
    const int answer = Call(function, arguments);
    block.Return();
    return answer;
}

// Every entry: a plug-in that lacks the function is told from one that fails.
template <typename Work>
int Enter(FARPROC function, const Work& work) {
    if (!function) return kNotExported;
    const WayBack wayBack;
    return WithoutExceptions<int>(susie::kOutOfMemory, work);
}

// The block that IsSupported is shown of a file; empty when the file cannot be opened. The file is
// closed again: a plug-in may want to open it for itself alone.
std::vector<std::byte> HeadOf(const char* fileName) {
    const InputFile file(FromAnsi(fileName));
    if (!file.IsOpen()) return {};
    std::vector<std::byte> head(susie::kHeaderBlockSize + kSlack);
    file.Read(0, std::span(head).first(susie::kHeaderBlockSize));
    return head;
}

int IsFileSupported(FARPROC function, const char* fileName) {
    const auto head = HeadOf(fileName);
    return head.empty() ? 0 : Call(function, {Word(fileName), Word(head.data())});
}

}  // namespace
}  // namespace tessary::susiectl

using namespace tessary::susiectl;
namespace susie = tessary::susie;

SUSIECTL_ENTRY int __stdcall GetPluginInfo(FARPROC function, int infoNumber, char* buffer,
                                           int bufferLength) {
    return Enter(function, [&] {
        LentBlock text(buffer, static_cast<size_t>(std::max(bufferLength, 0)));
        return CallAndReturn(text, function,
                             {Word(infoNumber), text.Address(), Word(bufferLength)});
    });
}

SUSIECTL_ENTRY int __stdcall IsSupported(FARPROC function, const char* fileName,
                                         const void* header) {
    return Enter(function, [&] {
        return header ? Call(function, {Word(fileName ? fileName : ""), Word(header)})
                      : IsFileSupported(function, fileName);
    });
}

SUSIECTL_ENTRY int __stdcall GetPictureInfo(FARPROC function, const char* source, LONG_PTR length,
                                            uint32_t flag, susie::PictureInfo* info) {
    return Enter(function, [&] {
        LentBlock record(info, sizeof *info);
        return CallAndReturn(record, function,
                             {Word(source), Word(length), Word(flag), record.Address()});
    });
}

SUSIECTL_ENTRY int __stdcall GetPicture(FARPROC function, const char* source, LONG_PTR length,
                                        uint32_t flag, HLOCAL* info, HLOCAL* bits,
                                        susie::ProgressCallback progress, LONG_PTR userData) {
    return Enter(function, [&] {
        return Call(function,
                    {Word(source), Word(length), Word(flag), Word(info), Word(bits),
                     Word(&ReportProgress), kNoUserData},
                    {progress, userData});
    });
}

SUSIECTL_ENTRY int __stdcall GetPreview(FARPROC function, const char* source, LONG_PTR length,
                                        uint32_t flag, HLOCAL* info, HLOCAL* bits,
                                        susie::ProgressCallback progress, LONG_PTR userData) {
    return GetPicture(function, source, length, flag, info, bits, progress, userData);
}

SUSIECTL_ENTRY int __stdcall GetArchiveInfo(FARPROC function, const char* source, LONG_PTR length,
                                            uint32_t flag, HLOCAL* members) {
    return Enter(function, [&] {
        return Call(function, {Word(source), Word(length), Word(flag), Word(members)});
    });
}

SUSIECTL_ENTRY int __stdcall GetFileInfo(FARPROC function, const char* source, LONG_PTR length,
                                         const char* fileName, uint32_t flag,
                                         susie::FileInfo* info) {
    return Enter(function, [&] {
        LentBlock record(info, sizeof *info);
        return CallAndReturn(
            record, function,
            {Word(source), Word(length), Word(fileName), Word(flag), record.Address()});
    });
}

SUSIECTL_ENTRY int __stdcall GetFile(FARPROC function, const char* source, LONG_PTR length,
                                     char* destination, uint32_t flag,
                                     susie::ProgressCallback progress, LONG_PTR userData) {
    return Enter(function, [&] {
        return Call(function,
                    {Word(source), Word(length), Word(destination), Word(flag),
                     Word(&ReportProgress), kNoUserData},
                    {progress, userData});
    });
}

SUSIECTL_ENTRY int __stdcall ConfigurationDlg(FARPROC function, HWND parent,
                                              int configurationFunction) {
    return Enter(function, [&] {
        return Call(function, {Word(parent), Word(configurationFunction)});
    });
}

SUSIECTL_ENTRY int __stdcall GetLastCondition(FARPROC function, wchar_t* text, int length) {
    return Enter(function, [&] {
        LentBlock lent(text, static_cast<size_t>(std::max(length, 0)) * sizeof *text);
        return CallAndReturn(lent, function, {lent.Address(), Word(length)});
    });
}

SUSIECTL_ENTRY int __stdcall OpenFrames(FARPROC function, const char* source, LONG_PTR length,
                                        uint32_t flag, susie::FrameList* list, void** frames) {
    return Enter(function, [&] {
        LentBlock record(list, sizeof *list);
        return CallAndReturn(
            record, function,
            {Word(source), Word(length), Word(flag), record.Address(), Word(frames)});
    });
}

SUSIECTL_ENTRY int __stdcall GetFrame(FARPROC function, void* frames, uint32_t index,
                                      uint32_t* duration, susie::PictureRoom* room,
                                      susie::ProgressCallback progress, LONG_PTR userData) {
    return Enter(function, [&] {
        return Call(function,
                    {Word(frames), Word(index), Word(duration), Word(room), 0,
                     Word(&ReportProgress), kNoUserData},
                    {progress, userData});
    });
}

SUSIECTL_ENTRY int __stdcall CloseFrames(FARPROC function, void* frames) {
    return Enter(function, [&] { return Call(function, {Word(frames)}); });
}

SUSIECTL_ENTRY int __stdcall SPICallGuarded(FARPROC function, LONG_PTR argument) {
    const WayBack wayBack;
    return WithoutExceptions<int>(0, [&] {
        const auto answer = BareCall(function, {Word(argument)});
        if (answer) return static_cast<int>(*answer);
        SetRecovering(true);
        CheckHeaps();
        return 0;
    });
}

SUSIECTL_ENTRY int __stdcall SPIIsMemoryDamaged() {
    return AreHeapsDamaged();
}
