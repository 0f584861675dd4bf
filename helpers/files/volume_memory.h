// What is known of file systems.
#pragma once

#include <map>
#include <mutex>
#include <optional>
#include <string>

namespace tessary::files {

// Remembers of each volume whether its files can be marked to be deleted with their last handle,
// and the mark be taken back: there are file systems that take the one and not the other. For any
// thread.
class VolumeMemory {
  public:
    // Nothing: it is not known yet.
    std::optional<bool> TakesMarkBack(const std::wstring& volume);
    void SetTakesMarkBack(const std::wstring& volume, bool takesItBack);

  private:
    std::mutex mutex_;
    std::map<std::wstring, bool> volumes_;
};

}  // namespace tessary::files
