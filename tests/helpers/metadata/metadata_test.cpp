#include <zlib.h>

#include <algorithm>
#include <ostream>

#include "helpers/metadata/exif_data.h"
#include "helpers/metadata/file_metadata.h"
#include "helpers/metadata/saved_exif.h"
#include "helpers/metadata/user_comment.h"
#include "tests/support/seeds.h"

namespace tessary::metadata {

void PrintTo(const Field& field, std::ostream* out) {
    *out << static_cast<int>(field.kind) << ": " << field.text;
}

namespace {

using test::Bytes;
using test::Seed;

FileMetadata Read(const Bytes& file) {
    dib::MemorySource source(file);
    return ReadFileMetadata(source);
}

// What the EXIF data of all seeds say.
const Fields kCamera = {
    {FieldKind::kDateTaken, "2024:05:31 12:34:56"},
    {FieldKind::kMaker, "Tessary Optical"},
    {FieldKind::kModel, "T-1"},
    {FieldKind::kLens, "Tessar 50mm F2.8"},
    {FieldKind::kExposureTime, "1/250"},
    {FieldKind::kFNumber, "2.8"},
    {FieldKind::kIso, "400"},
    {FieldKind::kExposureBias, "+0.3"},
    {FieldKind::kFocalLength, "50"},
    {FieldKind::kFocalLength35, "75"},
    {FieldKind::kFlash, "16"},
    {FieldKind::kPosition, "35\u00B039'31.2\"N 139\u00B044'43.5\"E"},
    {FieldKind::kResolution, "300 \u00D7 300 dpi"},
    {FieldKind::kTitle, "夕暮れ"},
    {FieldKind::kDescription, "A tree on the hill"},
    {FieldKind::kComment, "感想"},
    {FieldKind::kArtist, "\x8E\x52\x93\x63"},  // Shift_JIS, as it stands there
    {FieldKind::kCopyright, "(c) 2024"},
    {FieldKind::kSoftware, "Maker 2.0"},
};

Fields Without(Fields fields, std::initializer_list<Field> others) {
    std::erase_if(fields, [&](const Field& field) {
        return field.kind == FieldKind::kOrientation ||
               std::ranges::find(others, field) != others.end();
    });
    return fields;
}

TEST(Metadata, TellsWhatEachFormatHas) {
    const auto read = Read(Seed("fuzz_metadata/jpeg"));
    EXPECT_EQ(Without(read.fields, {{FieldKind::kComment, "a remark"}}), kCamera);
    EXPECT_EQ(std::ranges::count(read.fields, Field{FieldKind::kOrientation, "6"}), 1);
    EXPECT_EQ(std::ranges::count(read.fields, Field{FieldKind::kComment, "a remark"}), 1);
    EXPECT_EQ(Without(Read(Seed("fuzz_metadata/png")).fields, {}), kCamera);
    EXPECT_EQ(Without(Read(Seed("fuzz_metadata/png-late")).fields,
                      {{FieldKind::kTitle, "A title"}, {FieldKind::kArtist, "Somebody"}}),
              kCamera);
    EXPECT_EQ(Without(Read(Seed("fuzz_metadata/tiff")).fields, {}), kCamera);
    EXPECT_TRUE(Read(Seed("fuzz_jpeg/grey")).exif.size() < 200);
    EXPECT_TRUE(Read(Seed("fuzz_bitmap_file/rgb24")).fields.empty());
}

// A PNG file without picture data whose only chunk is text.
Bytes PngOfText(const std::string& name, const std::string& data) {
    Bytes file{0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n'};
    const auto append = [&](const std::string& kind, const std::string& content) {
        const std::string named = kind + content;
        const auto* const bytes = reinterpret_cast<const Bytef*>(named.data());
        const auto put = [&](uLong number) {
            for (const int shift : {24, 16, 8, 0})
                file.push_back(static_cast<uint8_t>(number >> shift));
        };
        put(static_cast<uLong>(content.size()));
        file.insert(file.end(), named.begin(), named.end());
        put(crc32(0, bytes, static_cast<uInt>(named.size())));
    };
    append("IHDR", std::string("\0\0\0\1\0\0\0\1\x08\0\0\0\0", 13));
    append(name, data);
    append("IDAT", "");
    return file;
}

TEST(Metadata, ReadsExifThatIsTextInPngFiles) {
    const Bytes exif = Read(Seed("fuzz_metadata/png")).exif;
    std::string hex;
    for (const char* digits = "0123456789abcdef"; const uint8_t byte : exif) {
        hex += {digits[byte >> 4], digits[byte & 15]};
        if (hex.size() % 73 == 72) hex += '\n';
    }
    const auto rawOf = [&](const std::string& before, size_t size) {
        return "\nexif\n    " + std::to_string(size) + '\n' + before + hex + '\n';
    };
    const std::string keyword("Raw profile type exif\0", 22), other("Raw profile type APP1\0", 22);
    const std::string text = rawOf("", exif.size()), named = rawOf("457869660000", exif.size() + 6);
    uLongf size = compressBound(static_cast<uLong>(named.size()));
    std::string packed(size, '\0');
    compress(reinterpret_cast<Bytef*>(packed.data()), &size,
             reinterpret_cast<const Bytef*>(named.data()), static_cast<uLong>(named.size()));
    packed.resize(size);
    const Bytes whole = PngOfText("zTXt", other + '\0' + packed);
    for (const Bytes& file :
         {PngOfText("tEXt", keyword + text), PngOfText("tEXt", other + named), whole}) {
        EXPECT_EQ(Read(file).exif, exif);
        EXPECT_EQ(Without(Read(file).fields, {}), kCamera);
    }
    std::string wrong = text;
    wrong[wrong.size() / 2] = 'x';
    for (const std::string& bad :
         {wrong, rawOf("", exif.size() + 1), rawOf("", exif.size() - 1), rawOf("", 4'000'000'000u),
          text.substr(0, text.size() - 2), rawOf("00", exif.size() + 1), std::string("\nexif\n")})
        EXPECT_TRUE(Read(PngOfText("tEXt", keyword + bad)).exif.empty()) << bad.size();
    Bytes sum = whole;
    sum[sum.size() - 20] ^= 1;
    EXPECT_TRUE(Read(sum).exif.empty());
}

TEST(Metadata, ReadsCommentsInTheirCharacterCodes) {
    const auto told = [](const std::string& comment, bool isBigEndian = false) {
        return CommentText({reinterpret_cast<const uint8_t*>(comment.data()), comment.size()},
                           isBigEndian);
    };
    const std::string jis("JIS\0\0\0\0\0", 8), unicode("UNICODE\0", 8), none(8, '\0');
    // 夕a暮ｱ纊 and a character of another set.
    EXPECT_EQ(
        told(jis + "\x1B$B\x4D\x3C\x1B(Ba\x1B$@\x4A\x6B\x1B(I1\x1B$B\x79\x21\x1B$(Dab\x1B(B."),
        "\x97\x5B"
        "a\x95\xE9\xB1\xED\x40?.");
    EXPECT_EQ(told(jis + "\x1B$B\x4D"), "\x4D");
    for (const std::string& code : {none, jis, std::string()})
        EXPECT_EQ(told(code + "\x97\x5B\x95\xE9 abcd"), "\x97\x5B\x95\xE9 abcd");
    EXPECT_EQ(told(std::string("ASCII\0\0\0plain", 13)), "plain");
    EXPECT_EQ(told("a\x1B[31mred"), "a[31mred") << "of a terminal, and not of JIS";
    // 夕暮れ in the file's byte order, in the other, and with a mark.
    const std::string little("\x15\x59\xAE\x66\x8C\x30", 6), big("\x59\x15\x66\xAE\x30\x8C", 6);
    for (const bool isBig : {false, true}) {
        for (const std::string& text : {little, big, "\xFF\xFE" + little, "\xFE\xFF" + big})
            EXPECT_EQ(told(unicode + text, isBig), "夕暮れ");
    }
    EXPECT_EQ(told(""), "");
}

uint32_t NumberIn(const UniqueExif& data, ExifIfd directory, ExifTag tag) {
    return ExifValue(data, directory, tag).Number().value_or(0);
}

TEST(Metadata, FollowsThePictureIntoAnotherFile) {
    for (const char* const seed : {"jpeg", "png-late", "tiff"}) {
        SCOPED_TRACE(seed);
        const FileMetadata read = Read(Seed(std::string("fuzz_metadata/") + seed));
        const UniqueExif saved = LoadExif(SavedExif(read.exif, {480, 320}));
        ASSERT_NE(saved, nullptr);
        EXPECT_EQ(NumberIn(saved, EXIF_IFD_0, EXIF_TAG_ORIENTATION), 1u);
        EXPECT_EQ(NumberIn(saved, EXIF_IFD_EXIF, EXIF_TAG_COLOR_SPACE), 1u);
        EXPECT_EQ(NumberIn(saved, EXIF_IFD_EXIF, EXIF_TAG_PIXEL_X_DIMENSION), 480u);
        EXPECT_EQ(NumberIn(saved, EXIF_IFD_EXIF, EXIF_TAG_PIXEL_Y_DIMENSION), 320u);
        EXPECT_EQ(saved->ifd[EXIF_IFD_1]->count, 0u);
        EXPECT_EQ(saved->data, nullptr);
        EXPECT_EQ(saved->ifd[EXIF_IFD_INTEROPERABILITY]->count, 0u);
        EXPECT_FALSE(ExifValue(saved, EXIF_IFD_EXIF, EXIF_TAG_MAKER_NOTE).IsThere());
        EXPECT_FALSE(ExifValue(saved, EXIF_IFD_0, EXIF_TAG_STRIP_OFFSETS).IsThere());
        EXPECT_EQ(ExifValue(saved, EXIF_IFD_0, EXIF_TAG_ARTIST).Bytes().size(), 5u);
        EXPECT_EQ(ExifValue(saved, EXIF_IFD_EXIF, EXIF_TAG_LENS_MODEL).Bytes().size(), 17u);
        EXPECT_EQ(saved->ifd[EXIF_IFD_GPS]->count, 4u);
        const UniqueExif hidden = LoadExif(SavedExif(read.exif, {480, 320, false, false}));
        EXPECT_EQ(hidden->ifd[EXIF_IFD_GPS]->count, 0u);
        EXPECT_EQ(NumberIn(hidden, EXIF_IFD_EXIF, EXIF_TAG_COLOR_SPACE), 0xFFFFu);
    }
    // One that says nothing but where its pixels are.
    EXPECT_TRUE(SavedExif(Read(Seed("fuzz_system_picture/tiff")).exif, {1, 1}).empty());
}

void ExpectBounded(const Bytes& file) {
    const FileMetadata read = Read(file);
    EXPECT_LE(read.fields.size(), kMostFields);
    for (const Field& field : read.fields)
        EXPECT_LE(field.text.size(), kLongestText);
    const Bytes saved = SavedExif(read.exif, {100, 100});
    EXPECT_LE(saved.size(), kMostSavedExif);
    // What was made is what others can read.
    EXPECT_EQ(saved.empty(), LoadExif(saved) == nullptr);
}

TEST(Metadata, SurvivesDamage) {
    for (const char* const seed : {"jpeg", "png-late", "tiff"}) {
        const Bytes whole = Seed(std::string("fuzz_metadata/") + seed);
        for (size_t size = 0; size < whole.size(); ++size)
            ExpectBounded(test::Cut(whole, size));
        for (size_t at = 0; at < whole.size(); ++at) {
            for (const int value : {0, 1, 0x7F, 0xFF})
                ExpectBounded(test::With(whole, at, static_cast<uint64_t>(value)));
        }
        // Directories that lead to themselves and to each other, and counts beyond all bounds.
        for (size_t at = 0; at + 4 <= whole.size(); ++at) {
            ExpectBounded(test::With(whole, at, 8, 4));
            ExpectBounded(test::With(whole, at, 0xFFFFFFFF, 4));
        }
    }
}

TEST(Metadata, BoundsTexts) {
    Fields fields;
    AddField(fields, FieldKind::kComment, std::string(kLongestText - 1, 'a') + "夕");
    EXPECT_EQ(fields.front().text, std::string(kLongestText - 1, 'a'));
    AddField(fields, FieldKind::kTitle, " \r\n\t ");
    AddField(fields, FieldKind::kTitle, std::string(" a \0b", 5));
    AddField(fields, FieldKind::kTitle, "a");
    ASSERT_EQ(fields.size(), 2u);
    EXPECT_EQ(fields.back().text, "a");
    for (int i = 0; i < 1000; ++i)
        AddField(fields, FieldKind::kComment, std::to_string(i));
    EXPECT_EQ(fields.size(), kMostFields);
    EXPECT_EQ(Utf8Of(u"\xD83D\xDE00 \xDC00\xD83D"), "\U0001F600 \uFFFD\uFFFD");
}

}  // namespace
}  // namespace tessary::metadata
