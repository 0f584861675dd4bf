// A plug-in in a host process.
#pragma once

#include "app/settings/modValue.h"
#include "host/host_pool.h"
#include "plugin/plugin_connection.h"

namespace tessary {

// Has the pool's host do what is asked. A host that ends is replaced by the next operation, and
// what was loaded is loaded there when it is needed: only the operation in the middle of which it
// has ended fails, and that only when it ends a second host as well, unless it has certainly
// crashed or hung there. The pool is told of the culprit.
class HostConnection final : public PluginConnection {
  public:
    // `plugin`: the full path of its file. The pool must outlive this.
    HostConnection(const std::wstring& plugin, HostPool& pool) : path_(plugin), pool_(pool) {}
    ~HostConnection() override;

    LoadedPlugin Load() override;
    bool IsLoaded() const override { return isLoaded_; }
    bool IsInMemory() const override;
    PluginAnswer Unload() override;
    void LeaveLoaded() override;
    bool IsInUse() const override;

    void SetBoundFile(const std::wstring& path) override { boundFile_ = path; }

    PluginDescription Describe() override;
    PluginAnswer Supports(const PluginSource& source) override;
    MeasuredPicture Measure(const PluginSource& source) override;
    DecodedPicture Decode(const PluginSource& source, DecodeWish wish,
                          const SusieProgress& progress) override;
    DecodedFrame DecodeFrame(const PluginSource& source, uint32_t index,
                             const SusieProgress& progress) override;
    ListedArchive List(const PluginSource& archive) override;
    ExtractedMember Extract(const PluginSource& archive, const susie::FileInfo& member,
                            const std::optional<std::string>& folder,
                            const SusieProgress& progress) override;
    PluginAnswer Configure(HWND parent) override;

  private:
    // What came of a request: the answer, what else is in the reply, and the bytes that came with
    // it.
    struct Told {
        HostEnd end = HostEnd::kRefused;
        std::optional<PluginEnd> blame{};  // for that end
        PluginAnswer answer{};
        HostReply reply{};
        std::optional<HostSections::Lease> bytes{};
    };
    Told Ask(HostRequest request, const PluginSource& source = {},
             const SusieProgress& progress = {}) const;
    PluginCall CallOf(const HostRequest& request) const;
    HostEnd TryToAsk(HostRequest request, const PluginSource& source, const SusieProgress& progress,
                     Told& told) const;

    bool IsGivenUp() const;

    std::wstring path_;
    HostPool& pool_;
    std::wstring boundFile_;
    bool isLoaded_ = false;
    mutable bool tellsCondition_ = true;  // it has not crashed when it was asked for that
    mutable bool tellsFrames_ = true;     // nor for what frames there are
    mutable uint32_t judgedIn_ = 0;       // the long run in which this was found out:
    mutable bool wasGivenUp_ = false;
    mutable DWORD served_ = 0;  // by the host of that process number, in which it was loaded
};

// The program of a host process; it is beside this one.
inline constexpr wchar_t kHostProgram[] = L"tessary-host32.exe";

// Has all further connections of this thread lead to one host process.
void UseHostProcess(HostWait wait);

// How long plug-ins may be silent in these processes and in those of further threads, from the next
// call on; before it is said, as long as a user who has chosen nothing lets them.
void SetHostLimits(const GeneralSettings& general);

// Whether windows that plug-ins show while they work can be seen.
enum class HostWindows { kShown, kHidden };

// Lets further threads have plug-ins, each in a host process of its own.
void UseFurtherHosts(HostWindows windows);

// The full path of that program.
std::wstring HostProgram();

// The way to plug-ins in a host process of their own, which ends with the last copy of this: for
// one thread, which just waits. What ends there is held against nobody.
PluginConnector OwnHostConnector(HostWindows windows, const std::wstring& program = HostProgram());

}  // namespace tessary
