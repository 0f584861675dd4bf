// The end of the way that is in the host process: carries requests out.
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>

#include "host/host_channel.h"
#include "host32/kept_state.h"
#include "host32/page_notes.h"
#include "host32/section_stock.h"
#include "plugin/local_connection.h"

namespace tessary {

class HostService {
  public:
    // Takes over the handles of the events; the page is opened already. From now on the calls of
    // this process are noted there: the service must never end.
    HostService(ChannelEnd channel, const ChannelHandles& handles);
    HostService(const HostService&) = delete;
    HostService& operator=(const HostService&) = delete;

    // Carries out what comes until it is told to end, or the program is gone.
    void Run();

    // Code of a library that was just loaded is about to run. From the thread that loads it.
    void NoteStartUp() { channel_.SetStartingUp(true); }

  private:
    struct Connected {
        LocalConnection connection;
        bool isTried = false;
    };

    // Waits for the next request, or the answer to a question, and handles the messages of
    // plug-ins' windows meanwhile; false: the program is gone, or whoever was asked last has ruined
    // what is waited with.
    bool WaitForRequest();
    void CloseFrames();
    std::optional<HostRequest> TakeRequest() const;
    // What belongs to a reply, besides what is said in it.
    HostReply Carried(const HostRequest& request);
    // `loads`: the plug-in is loaded if that was not tried yet, as in a host that has taken the
    // place of another.
    LocalConnection& ConnectionOf(const std::wstring& plugin, bool loads);
    // The bytes of the request's source, in a copy of the plug-in's own; nothing: there are none.
    std::optional<Section> BytesOfSource(const HostRequest& request);
    bool TellProgress(int done, int total);
    void Answer(HostReply reply);

    HostReply Load(const HostRequest& request);
    HostReply Describe(LocalConnection& plugin);
    HostReply Measure(LocalConnection& plugin, const PluginSource& source);
    HostReply Decode(LocalConnection& plugin, const PluginSource& source,
                     const HostRequest& request);
    HostReply Frame(LocalConnection& plugin, const PluginSource& source,
                    const HostRequest& request);
    // The reply with the picture that `decode` makes in rooms of the stock's.
    using PictureMaker = std::function<DecodedPicture(const RoomMaker& rooms)>;
    HostReply WithPicture(const PictureMaker& decode);
    HostReply List(LocalConnection& plugin, const PluginSource& source);
    HostReply Extract(LocalConnection& plugin, const PluginSource& source,
                      const HostRequest& request);
    HostReply TurnJpeg(const HostRequest& request);
    HostReply ReadMetadata(const HostRequest& request);
    SusieProgress ProgressOf(const HostRequest& request);

    // Room for a picture in a section of the stock's.
    struct PictureSection {
        SectionStock::Taken section;
        size_t bitsAt;

        std::span<uint8_t> Bits() const { return section.bytes.subspan(bitsAt); }
    };
    std::optional<PictureSection> TakeForPicture(size_t infoSize, size_t bitsSize);

    ChannelEnd channel_;
    PageNotes notes_;
    KeptState state_;
    HANDLE request_;
    HANDLE answer_;
    HANDLE program_;
    std::map<std::wstring, std::unique_ptr<Connected>> plugins_;  // by their paths, in upper case
    // The bytes of the source that may come again: mapped while they are worked on only, and anew
    // each time, for a plug-in may have written there.
    struct Lent {
        UniqueSection section;
        uint32_t id = 0;
    };
    Lent lent_;
    SectionStock stock_;              // of what goes to the program
    std::optional<Section> spilled_;  // a reply that is too long for the page
    std::wstring lastAsked_;          // plug-in
    ULONGLONG lastProgress_ = 0;      // in ticks; 0: none yet
    bool goesOn_ = true;
};

}  // namespace tessary
