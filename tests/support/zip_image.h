// Small ZIP archives of stored members, for tests that need an archive and not a particular one.
#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace tessary::test {

inline uint32_t Crc32Of(const std::string& bytes) {
    uint32_t crc = 0xFFFFFFFF;
    for (const char byte : bytes) {
        crc ^= static_cast<uint8_t>(byte);
        for (int bit = 0; bit < 8; ++bit)
            crc = (crc >> 1) ^ ((crc & 1) != 0 ? 0xEDB88320 : 0);
    }
    return ~crc;
}

// Members by name (in whatever code page) and content.
inline std::string ZipFileOf(const std::vector<std::pair<std::string, std::string>>& members) {
    const auto number = [](uint32_t value, int bytes) {
        std::string text;
        for (; bytes > 0; --bytes, value >>= 8)
            text += static_cast<char>(value & 0xFF);
        return text;
    };
    std::string zip;
    std::string directory;
    for (const auto& [name, content] : members) {
        const auto size = static_cast<uint32_t>(content.size());
        const std::string common = number(20, 2) + number(0, 4) + number(0x58210000, 4) +
                                   number(Crc32Of(content), 4) + number(size, 4) + number(size, 4) +
                                   number(static_cast<uint32_t>(name.size()), 2) + number(0, 2);
        directory += number(0x02014B50, 4) + number(20, 2) + common + number(0, 10) +
                     number(static_cast<uint32_t>(zip.size()), 4) + name;
        zip += number(0x04034B50, 4) + common + name + content;
    }
    const auto start = static_cast<uint32_t>(zip.size());
    const auto count = static_cast<uint32_t>(members.size());
    return zip + directory + number(0x06054B50, 4) + number(0, 4) + number(count, 2) +
           number(count, 2) + number(static_cast<uint32_t>(directory.size()), 4) +
           number(start, 4) + number(0, 2);
}

}  // namespace tessary::test
