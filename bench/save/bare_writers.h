// What the savers are measured against.
#pragma once

#include <windows.h>

#include <span>
#include <string>
#include <vector>

#include "helpers/dib/dib_view.h"

namespace tessary::bench {

// A new file in the place of the old one, written with the system's calls in large pieces and
// flushed to the disk at the end, like the savers' own, but without the care for the old file.
class PlainFile {
  public:
    explicit PlainFile(const std::wstring& path);
    PlainFile(const PlainFile&) = delete;
    PlainFile& operator=(const PlainFile&) = delete;
    ~PlainFile();
    void Write(std::span<const uint8_t> bytes);

  private:
    void WriteOut(std::span<const uint8_t> bytes);

    HANDLE file_;
    std::vector<uint8_t> buffer_;
};

// libpng with zlib, everything at its default, which is level 6, on this thread. Pictures of 8 bits
// with a colour table and of 24 bits.
void WriteBarePng(const dib::DibView& picture, const std::wstring& path);

// libjpeg-turbo at quality 60, everything else at its default. The same pictures.
void WriteBareJpeg(const dib::DibView& picture, const std::wstring& path);

// Just the bytes.
void WriteBytes(std::span<const uint8_t> bytes, const std::wstring& path);

}  // namespace tessary::bench
