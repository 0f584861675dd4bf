#include "host/host_channel.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <cwchar>

namespace tessary {

std::wstring ChannelHandles::Arguments() const {
    std::wstring text;
    for (const HANDLE handle : {page, request, answer, program}) {
        if (!text.empty()) text += L' ';
        text += std::to_wstring(reinterpret_cast<uintptr_t>(handle));
    }
    return text;
}

std::optional<ChannelHandles> ChannelHandles::Of(std::wstring_view arguments) {
    const std::wstring text(arguments);
    std::array<HANDLE, 4> handles{};
    const wchar_t* rest = text.c_str();
    for (HANDLE& handle : handles) {
        wchar_t* end = nullptr;
        const unsigned long long number = std::wcstoull(rest, &end, 10);
        if (end == rest || number == 0) return std::nullopt;
        handle = reinterpret_cast<HANDLE>(static_cast<uintptr_t>(number));
        rest = end;
    }
    return ChannelHandles{handles[0], handles[1], handles[2], handles[3]};
}

bool ChannelEnd::Put(ChannelSignal signal, std::span<const uint8_t> message) {
    if (message.size() > kChannelRoom) return false;
    ChannelPage& page = Page();
    page.section = {};
    page.size = static_cast<uint32_t>(message.size());
    std::memcpy(page.message, message.data(), message.size());
    page.signal = signal;
    return true;
}

void ChannelEnd::PutElsewhere(ChannelSignal signal, const WireSection& section) {
    ChannelPage& page = Page();
    page.section = section;
    page.size = 0;
    page.signal = signal;
}

std::optional<std::vector<uint8_t>> ChannelEnd::Message() const {
    const uint32_t size = Read(Page().size);
    if (size > kChannelRoom) return std::nullopt;
    return std::vector<uint8_t>(Page().message, Page().message + size);
}

WireSection ChannelEnd::Elsewhere() const {
    return {Read(Page().section.handle), Read(Page().section.size), 0};
}

void ChannelEnd::PutProgress(int32_t done, int32_t total) {
    ChannelPage& page = Page();
    page.done = done;
    page.total = total;
    page.signal = ChannelSignal::kProgress;
}

}  // namespace tessary
