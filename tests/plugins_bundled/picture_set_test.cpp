// The PNG decoder over pictures of other programs, where those are at hand.
#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string_view>

#include "plugins/iftpng/png_decoder.h"
#include "tests/plugins_bundled/reference_pictures.h"

namespace tessary::codec::test {
namespace {

Bytes ReadFile(const std::filesystem::path& path) {
    std::ifstream stream(path, std::ios::binary);
    return {std::istreambuf_iterator(stream), std::istreambuf_iterator<char>()};
}

TEST(PictureSet, PngSuiteLooksAsItShould) {
    const char* chosen = std::getenv("TESSARY_PICTURES");
    const auto folder =
        std::filesystem::path(chosen != nullptr ? chosen : TESSARY_PICTURES) / "pngsuite";
    if (!std::filesystem::is_directory(folder)) GTEST_SKIP() << "no pictures in " << folder;
    const png::PngDecoder decoder;
    for (const auto& entry : std::filesystem::directory_iterator(folder / "png")) {
        SCOPED_TRACE(entry.path());
        const Bytes file = ReadFile(entry.path());
        const Decoded decoded(decoder, file);
        if (entry.path().filename().string().starts_with('x')) {  // damaged on purpose
            EXPECT_EQ(decoded.result,
                      decoder.IsSupported(file) ? Result::kBrokenData : Result::kUnknownFormat);
            continue;
        }
        ASSERT_EQ(decoded.result, Result::kSuccess);
        const Colors actual = decoded.Pixels();
        const Colors expected = ReadBitmap(
            ReadFile(folder / "bmp" / entry.path().filename().replace_extension(".bmp")));
        ASSERT_EQ(actual.width, expected.width);
        constexpr std::string_view kBackground = "bKGD";
        std::optional<int> behind;  // not known on a background of the file's own
        if (std::search(file.begin(), file.end(), kBackground.begin(), kBackground.end()) ==
            file.end()) {
            behind = 255;
        }
        EXPECT_LE(WorstDifference(actual.bgra, expected.bgra, behind), 1);
    }
}

}  // namespace
}  // namespace tessary::codec::test
