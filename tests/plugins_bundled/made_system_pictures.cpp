#include <initializer_list>

#include "tests/plugins_bundled/made_pictures.h"

namespace tessary::codec::test {
namespace {

// Appends little-endian numbers of `size` bytes.
void Put(std::vector<uint8_t>& file, unsigned size, std::initializer_list<uint32_t> values) {
    for (const uint32_t value : values) {
        for (unsigned i = 0; i < size; ++i)
            file.push_back(static_cast<uint8_t>(value >> (8 * i)));
    }
}

}  // namespace

std::vector<uint8_t> MakeIcon(uint32_t type) {
    const uint32_t sides[] = {16, 32, 24}, colors[] = {0xFFFF0000, 0x80204060, 0xFF00FF00};
    std::vector<uint8_t> directory, pictures;
    Put(directory, 2, {0, type, 3});
    for (size_t i = 0; i < 3; ++i) {
        const uint32_t side = sides[i], size = 40 + side * side * 4 + side * 4;
        Put(directory, 1, {side, side, 0, 0});
        Put(directory, 2, {1, 32});
        Put(directory, 4, {size, 6 + 3 * 16 + static_cast<uint32_t>(pictures.size())});
        Put(pictures, 4, {40, side, side * 2});
        Put(pictures, 2, {1, 32});
        Put(pictures, 4, {0, 0, 0, 0, 0, 0});
        for (uint32_t pixel = 0; pixel < side * side; ++pixel)
            Put(pictures, 4, {colors[i]});
        pictures.resize(pictures.size() + side * 4);  // the mask, one word per row
    }
    directory.insert(directory.end(), pictures.begin(), pictures.end());
    return directory;
}

std::vector<uint8_t> MakeTiff(uint32_t width, uint32_t height, uint32_t bits, uint32_t photometric,
                              uint32_t orientation, uint32_t strip) {
    std::vector<uint8_t> file{'I', 'I', '*', 0};
    Put(file, 4, {12, strip});
    Put(file, 2, {10});
    const uint32_t entries[][2] = {
        {0x0100, width},       {0x0101, height}, {0x0102, bits},        {0x0103, 1},
        {0x0106, photometric}, {0x0111, 8},      {0x0112, orientation}, {0x0115, 1},
        {0x0116, height},      {0x0117, 4}};
    for (const auto& [tag, value] : entries) {
        Put(file, 2, {tag, 3});
        Put(file, 4, {1, value});
    }
    Put(file, 4, {0});
    return file;
}

std::vector<uint8_t> MakeDds(uint32_t side, const char* name, uint32_t format) {
    std::vector<uint8_t> file{'D', 'D', 'S', ' '};
    Put(file, 4, {124, 0x1007, side, side, 0, 0, 0});
    file.resize(file.size() + 44);
    Put(file, 4, {32, 4});
    file.insert(file.end(), name, name + 4);
    file.resize(file.size() + 20);
    Put(file, 4, {0x1000, 0, 0, 0, 0});
    if (format != 0) Put(file, 4, {format, 3, 0, 1, 0});
    for (uint32_t block = 0; block < side * side / 16; ++block)
        Put(file, 4, {0x001FF800, 0});
    return file;
}

}  // namespace tessary::codec::test
