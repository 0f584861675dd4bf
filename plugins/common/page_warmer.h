// Has the system hand out a block's pages while the decoder is still reading.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <thread>

namespace tessary::spi {

// Fresh memory costs its first writer a fault for every page: a quarter of the time of a large
// JPEG. A second thread takes these faults, from the block's end to its start, as decoders fill a
// bottom-up picture. The contents stay as they are, whoever writes at the same time.
class PageWarmer {
  public:
    PageWarmer() = default;
    PageWarmer(const PageWarmer&) = delete;
    PageWarmer& operator=(const PageWarmer&) = delete;
    ~PageWarmer() { Stop(); }

    // Begins with a block, which must stay until Stop. Does nothing for small blocks, nor when no
    // thread can be had.
    void Start(uint8_t* block, size_t size);

    // Ends the thread; blocks are safe to free from here on.
    void Stop();

  private:
    std::thread thread_;
    std::atomic<bool> stopped_ = false;
};

}  // namespace tessary::spi
