// The way between a program and one host process: a page of shared memory and two events. The
// program writes a request and raises `request`; the host raises `answer` for each question about
// progress, which is answered by `request`, and at last for its reply.
#pragma once

#include <windows.h>

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "host/host_messages.h"
#include "host/host_notes.h"
#include "host/section.h"

namespace tessary {

// What stands in the page.
enum class ChannelSignal : uint32_t { kNothing, kRequest, kProgress, kReply };

// A message that is longer has a section of its own.
constexpr size_t kChannelRoom = 192 * 1024;

struct ChannelPage {
    ChannelSignal signal;
    uint32_t size;        // of the message, in bytes
    WireSection section;  // that it is in; else it is in `message`
    int32_t done;         // kProgress
    int32_t total;
    uint32_t goesOn;      // the answer to that: not 0
    uint32_t startingUp;  // not 0: the library that is being loaded is there, and its code runs
    HostNotes notes;      // the host's
    uint8_t message[kChannelRoom];
};

// How a host finds its end: handles of its own, in the arguments that it is started with.
struct ChannelHandles {
    HANDLE page = nullptr;
    HANDLE request = nullptr;
    HANDLE answer = nullptr;
    HANDLE program = nullptr;  // the process that has started it, to be waited for

    std::wstring Arguments() const;
    // Nothing when the text is not of the kind.
    static std::optional<ChannelHandles> Of(std::wstring_view arguments);
};

// The page as both ends use it. The other side may change it at any time: everything is read once.
class ChannelEnd {
  public:
    explicit ChannelEnd(Section page) : page_(std::move(page)) {}

    // What the other side has signalled.
    ChannelSignal Signal() const { return Read(Page().signal); }

    // Puts a message that fits into the page. False when it does not.
    bool Put(ChannelSignal signal, std::span<const uint8_t> message);
    // Says that it is in a section of the host's.
    void PutElsewhere(ChannelSignal signal, const WireSection& section);
    // The message in the page; nothing when its size cannot be.
    std::optional<std::vector<uint8_t>> Message() const;
    // Where else the message is; a handle of 0: in the page.
    WireSection Elsewhere() const;

    void PutProgress(int32_t done, int32_t total);
    int32_t Done() const { return Read(Page().done); }
    int32_t Total() const { return Read(Page().total); }
    void PutGoesOn(bool goesOn) { Page().goesOn = goesOn ? 1 : 0; }
    bool GoesOn() const { return Read(Page().goesOn) != 0; }

    void SetStartingUp(bool isStartingUp) { Page().startingUp = isStartingUp ? 1 : 0; }
    bool IsStartingUp() const { return Read(Page().startingUp) != 0; }

    // The notes of the host, in the page itself.
    HostNotes& Notes() const { return Page().notes; }

  private:
    ChannelPage& Page() const { return *reinterpret_cast<ChannelPage*>(page_.Bytes().data()); }
    template <typename T>
    static T Read(const T& field) {
        return *static_cast<const volatile T*>(&field);
    }

    Section page_;
};

}  // namespace tessary
