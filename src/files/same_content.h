// Whether files are equal, byte for byte.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "picture/save/encoded_picture.h"

namespace tessary {

// False also when one of them cannot be read, or is not on this disk: it is not worth fetching.
bool HaveSameContent(const std::wstring& one, const std::wstring& other);

// The same of a file that is made and not written yet.
bool HaveSameContent(const FileBytes& bytes, const std::wstring& path);

// Remembers the contents of files that may be gone by the time they are asked about.
class KnownContents {
  public:
    void Add(const std::wstring& path);
    // Whether a file of that content was added.
    bool Holds(const std::wstring& path) const;

  private:
    struct Content {
        uint64_t size;
        std::vector<uint8_t> digest;  // SHA-256
    };

    static std::optional<Content> ContentOf(const std::wstring& path);

    std::vector<Content> contents_;
};

}  // namespace tessary
