// One Susie plug-in: what it is and what it can read, and the file or memory block that it is bound
// to for decoding.
//
// Members raise PluginError (plugin_error.h), whose description may be shown to the user;
// ErrorString and ErrorFunction keep the last error. Used from the user-interface thread only.
//
// While a plug-in is being called (PluginCallUnderWay), members that would change what is set or
// bound or call a plug-in raise kErrorCallUnderWay, and UnloadDLL does nothing.
#pragma once

#include <windows.h>

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>

#include "plugin/crashed_calls.h"
#include "plugin/plugin_connection.h"
#include "plugin/plugin_error.h"
#include "plugin/plugin_state.h"

namespace tessary {

// Where DecodePicture puts the picture.
enum class DecodeTarget { kBmpFile = 0, kMemory = 1 };

// `flags` of DecodePicture.
constexpr uint32_t kDecodeTryPreview = 1;
// The picture may come in colours that its profile tells (Picture::Profile), where it takes next to
// no time to convert them; else it is in sRGB.
constexpr uint32_t kDecodeInOwnColors = 2;
// In results of DecodePicture: the picture came through the preview call.
constexpr uint32_t kPreviewResult = 0x80000000;

class clsSusie {
  public:
    clsSusie() = default;
    clsSusie(const clsSusie&) = delete;
    clsSusie& operator=(const clsSusie&) = delete;
    ~clsSusie();

    // --- The plug-in file (clsSusie_plugin.cpp) ---

    // The plug-in file's full path; empty when none is set. Setting it releases the one before,
    // tries the plug-in out and reads what it tells about itself; after a refusal none is set.
    const std::wstring& DllName() const { return dllName_; }
    void SetDllName(const std::wstring& path);
    // The same for a plug-in of which everything is known: nothing is asked or loaded, until
    // something is wanted of it.
    void SetKnownDll(const std::wstring& path, PluginTraits traits);

    // Asks a plug-in that was set by SetKnownDll what it tells about itself when it is first
    // loaded, and tells `handler` then, and after its settings window too. `isGood`: Traits() is
    // what it tells; else it could not be loaded.
    void OnTold(std::function<void(const clsSusie& plugin, bool isGood)> handler) {
        told_ = std::move(handler);
    }

    // kStylePicture, kStyleArchive or kStyleNone.
    int32_t DllStyle() const { return traits_.style; }
    const std::wstring& ProductName() const { return traits_.productName; }
    const PluginTraits& Traits() const { return traits_; }

    // Index 0: all patterns, joined by `;`. Index 1 to 64: that pattern, empty behind the last.
    std::wstring FileType(int32_t index) const;
    const FilePatterns& Patterns() const { return traits_.patterns; }

    // Frees the plug-in file after every operation when nothing is bound.
    bool AutoUnload() const { return autoUnload_; }
    void SetAutoUnload(bool autoUnload);

    // Frees the plug-in file, unless something is bound, the plug-in shows a window or runs a
    // thread, or it has failed before: one that has crashed may crash again when it is freed.
    void UnloadDLL();

    // Whether it has crashed when something was first wanted of it; it is not tried again then.
    bool IsUnloadable() const { return loadFault_.has_value(); }
    bool IsLoaded() const { return connection_ != nullptr && connection_->IsInMemory(); }
    // Whether UnloadDLL leaves the file loaded whatever is bound.
    bool IsKeptLoaded() const {
        return keepLoaded_ || (connection_ != nullptr && connection_->IsInUse());
    }

    // Whether ConfigurationDlg is there; opens it and answers its result, -1 when it is not. What
    // the plug-in tells about itself is read anew behind it: settings may change the patterns.
    bool SupportConfigurationDialog() const { return traits_.hasSettings; }
    int32_t ShowConfigurationDialog(HWND parent);
    // Reads it once more, for settings windows that have stayed open behind the call. Does nothing
    // for a plug-in whose settings window was never opened, and for one that is not loaded.
    void RefreshInfo();

    // Failures so far of one of the plug-in's functions, or of all for an empty name (0 when the
    // store cannot be read); adds one.
    int32_t ErrorCount(std::wstring_view function) const;
    void SpiSEHError(std::wstring_view function);
    // Forgets all failures: from now on the plug-in is one like any other.
    void ForgetErrors();

    // The last error's message, and where it happened.
    const std::wstring& ErrorString() const { return lastError_.message; }
    const std::wstring& ErrorFunction() const { return lastError_.function; }
    // What the plug-in has told of the last decoding, extraction or list of members, beside its
    // success or failure; and the text of that when it is damage, else an empty one.
    const PluginCondition& Condition() const { return condition_; }
    std::wstring Damage() const {
        return condition_.kind == susie::kConditionDamaged ? condition_.text : std::wstring();
    }
    // How many errors there have been: tells whether a stretch of code has met one.
    uint32_t ErrorSerial() const { return errorSerial_; }

    // --- What it is bound to (clsSusie_binding.cpp) ---

    // Ask the plug-in only about files whose names its patterns match.
    bool CheckMode() const { return checkMode_; }
    void SetCheckMode(bool checkMode) { checkMode_ = checkMode; }

    // Whether the plug-in supports a file, or the data in a block (`fileName`: where it comes from,
    // for plug-ins that judge by it). Leaves the binding alone.
    bool CheckFile(const std::wstring& file);
    bool CheckMemory(HLOCAL memory, const std::wstring& fileName);

    // Binds a file that the plug-in supports; of an archive the member list is read. Nothing is
    // bound after a refusal. An empty path unbinds and then raises kErrorNoFileName. A file whose
    // name plug-ins cannot open is read into memory and stays bound as it was then.
    void SetFile(const std::wstring& path);

    // The same for a block of local memory, which stays the caller's and must live until something
    // else is bound. An invalid handle unbinds and then raises kErrorInvalidMemory.
    void SetMemoryHandle(HLOCAL memory, const std::wstring& fileName);

    bool IsBound() const { return !bound_.IsEmpty(); }
    // 0: a file is bound, or nothing; 1: a block is.
    int32_t FileMode() const { return bound_.memory == nullptr ? 0 : 1; }
    const std::wstring& GetFile() const { return bound_.file; }
    HLOCAL GetMemoryHandle() const { return bound_.memory; }

    // --- The bound picture (clsSusie_decoding.cpp, clsSusie_drawing.cpp) ---

    // Size in pixels and bits per pixel as the plug-in tells them; -1 when it does not. The decoded
    // picture may differ.
    int32_t Width();
    int32_t Height();
    int32_t ColorDepth();

    // Decodes the bound picture, through the preview call first if `flags` asks for it.
    // kMemory: `picture` receives the picture; the result is 0.
    // kBmpFile: writes the file `bmpFile`; the result is the writer's, above 0.
    // The result carries kPreviewResult. Raises DecodeError when the plug-in fails, and when what
    // it decoded is no picture. `enough`: as DecodeWish has it.
    uint32_t DecodePicture(DecodeTarget target, uint32_t flags, const SusieProgress& progress,
                           const std::wstring& bmpFile, Picture* picture, uint32_t enough = 0);

    // What frames or pages the source of the last DecodePicture has; nothing after a failure.
    const PictureFrames& Frames() const { return frames_; }

    // A frame of what is bound, from 0, as a whole picture; `duration` receives how long it is to
    // be shown (DecodedFrame). Any of those of Frames() may be asked for, also of a source that was
    // decoded by another object; in their order each takes one step. Raises DecodeError when the
    // plug-in fails, and when the source has not so many any more.
    Picture DecodeFrame(uint32_t index, const SusieProgress& progress, uint32_t& duration);

    // 0: ShowPicture draws at the picture's own size; else fitted into the box.
    int32_t ShowType() const { return showType_; }
    void SetShowType(int32_t showType) { showType_ = showType; }

    // Draws a plain pair, which stays the caller's, into a box of that many pixels at the device
    // context's origin. ErrorString tells what was drawn.
    void ShowPicture(HDC context, int boxWidth, int boxHeight, const PicturePair& picture);

    // --- The bound archive (clsSusie_archive.cpp) ---

    // Number of members; each one's name with its folder, by its index from 1.
    int32_t FileNumber();
    std::wstring Files(int32_t index);
    // When it was last changed, as MemberChanged has it.
    uint64_t FileChanged(int32_t index);

    // The members that are files, by their index; what only stands for a folder is left out.
    std::vector<ListedMember> GetExpandFileList();

    // Extracts the member of that index into a block of its own. Of a plug-in that extracts to disk
    // only, and of a member of which the plug-in lists no size, the block is read back from there.
    // The block is never empty; it may be some bytes longer than the member. Raises DecodeError
    // when the plug-in fails, or has nothing to give.
    OwnedBlock DecodeArchive(int32_t index, const SusieProgress& progress);

    // Extracts it into the file `fileName`, a safe relative name (member_file_name.h), below
    // `folder`, which must exist; folders in between are made. A file that is there is replaced
    // when the member is complete. A member without bytes becomes an empty file. Raises DecodeError
    // when the plug-in fails, and UnwrittenFileError when the file cannot be written, as when the
    // disk is full or a folder in between turns out to be a link to another place. `keepsDate`: the
    // file gets the member's date.
    void DecodeArchive(int32_t index, const std::wstring& folder, const std::wstring& fileName,
                       const SusieProgress& progress, bool keepsDate = false);

  private:
    // Everything that belongs to what is bound; a fresh one stands for "nothing".
    struct Binding {
        std::wstring file;                // as the caller named it; empty in memory mode
        std::string pluginName;           // the name that the plug-in is given
        OwnedBlock content;               // the file's, when the plug-in cannot open it by name
        HLOCAL memory = nullptr;          // the caller's block in memory mode
        std::optional<PictureSize> size;  // once it was asked for
        ArchiveMembers members;

        bool IsEmpty() const { return file.empty() && memory == nullptr; }
    };

    // A binding as plug-ins take it; blocks stay locked for its own life.
    class Source {
      public:
        // Raises kErrorInvalidMemory when a block is gone.
        explicit Source(const Binding& binding);
        const PluginSource& Get() const { return source_; }

      private:
        BlockLock lock_;
        PluginSource source_;
    };

    template <typename Body>
    auto Member(std::wstring_view label, Body&& body);
    template <typename Operation>
    auto Ask(const std::wstring& function, const PluginSource& source, Operation&& operation,
             const std::wstring& part = {});
    void SetError(std::wstring_view message, std::wstring_view function);
    void Note(const PluginAnswer& answer);

    // Raises kErrorCallUnderWay while a plug-in is being called.
    static void RequireNoCall();
    // Loads the plug-in file unless it is loaded; no call may be under way.
    void RequireModule();
    void ReleaseModule();
    void UnloadAfterUse();
    void ReleasePlugin();
    void Connect(const std::wstring& path);
    void ReadPlugin();
    void MeetRemembered();
    void Tell(bool isGood) const;
    void AskAnew();

    void Unbind();
    bool Supports(const std::wstring& file);
    bool Supports(HLOCAL memory, const std::wstring& fileName);
    bool Supports(const PluginSource& source);
    Binding AcceptedFile(const std::wstring& path);
    Binding AcceptedMemory(HLOCAL memory, const std::wstring& fileName);
    void ReadMembers(Binding& binding);
    template <typename Accept>
    void Bind(Accept&& accept);

    PictureSize Size();
    void RequirePictureSource() const;
    Picture Decode(uint32_t flags, uint32_t enough, const SusieProgress& progress,
                   uint32_t& resultFlag);
    static uint32_t SaveBmp(const Picture& picture, const std::wstring& bmpFile);
    const ArchiveMembers& Members();
    const susie::FileInfo& MemberAt(int32_t index);
    OwnedBlock Extract(const susie::FileInfo& member, const SusieProgress& progress);
    ExtractedMember ExtractTo(const std::optional<std::string>& folder, const Source& archive,
                              const susie::FileInfo& member, const SusieProgress& progress);
    ExtractedMember ExtractOverDisk(const Source& archive, const susie::FileInfo& member,
                                    const SusieProgress& progress);

    std::wstring dllName_;
    std::unique_ptr<PluginConnection> connection_;  // exactly while dllName_ is not empty
    PluginTraits traits_;
    bool isRemembered_ = false;             // nothing was asked of it yet
    std::optional<PluginFault> loadFault_;  // it has crashed when it was to be loaded first
    std::function<void(const clsSusie& plugin, bool isGood)> told_;
    bool autoUnload_ = false;
    bool checkMode_ = false;
    bool keepLoaded_ = false;      // it has failed before
    bool extractsToDisk_ = false;  // it was seen to
    bool isSetUp_ = false;         // its settings window was opened
    int32_t showType_ = 0;
    CrashedCalls crashed_;
    PluginCondition condition_;
    PictureFrames frames_;
    PluginFault lastError_;
    uint32_t errorSerial_ = 0;
    Binding bound_;
};

// Runs a member: whatever goes wrong in it leaves as a PluginError and is remembered as the last
// error, unless a call into the plug-in has left a more telling one.
template <typename Body>
auto clsSusie::Member(std::wstring_view label, Body&& body) {
    const uint32_t before = errorSerial_;
    try {
        return body();
    } catch (const PluginError& error) {
        if (errorSerial_ == before) SetError(error.Description(), label);
        throw;
    } catch (...) {
        SetError(kUnexpectedInMemberText, label);
        throw PluginError(kErrorUnexpectedInMember, kUnexpectedInMemberText);
    }
}

// Has the plug-in do something with a source: `operation` is of its connection. What has crashed
// over the same content before (`part` of it) is answered kResultCrashed, not asked for again and
// not counted.
template <typename Operation>
auto clsSusie::Ask(const std::wstring& function, const PluginSource& source, Operation&& operation,
                   const std::wstring& part) {
    std::invoke_result_t<Operation> answer{};
    if (crashed_.Hold(function + part, source)) {
        answer.code = kResultCrashed;
        answer.fault = {kPluginCrashedText, function};
    } else {
        answer = operation();
        // One that was only too slow may have had a bad moment.
        if (answer.HasCrashed() && answer.end != ProcessEnd::kSilent) {
            crashed_.Note(function + part, source);
        }
    }
    Note(answer);
    return answer;
}

}  // namespace tessary
