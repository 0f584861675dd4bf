// The formats that pictures are saved in, one row each: all that the program needs to know of one.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "helpers/saving/save_options.h"

namespace tessary {

// One of several values of an option.
struct SaverChoice {
    const wchar_t* word;     // on the command line
    const wchar_t* caption;  // with its mnemonic
};

// What the user can set for a format: a number from 0 to `most`.
struct SaverOption {
    enum class Kind {
        kSwitch,  // 1: on, 0: off; a check box
        kChoice,  // an index into `choices`; option buttons in a frame
        kLevel,   // a slider
    };

    Kind kind;
    const wchar_t* key;  // in the settings' section `FileFormat`; the default is the record's own
    int16_t& (*in)(saving::SaveOptions& options);
    const wchar_t* argument;  // on the command line, behind `--`; of a switch also behind `--no-`
    const wchar_t* caption;   // with its mnemonic
    int16_t most = 1;
    std::span<const SaverChoice> choices = {};
    // Of a slider: what one position stands for, and the captions of its ends.
    int16_t step = 1;
    const wchar_t* lowCaption = L"";
    const wchar_t* highCaption = L"";
    // A switch that the format's second choice has no use for.
    bool isForFirstChoice = false;

    int16_t ValueIn(saving::SaveOptions options) const { return in(options); }
};

// The entry of a library that writes the format: int __stdcall (info, bits, file name, options,
// progress callback, extras), with the addresses and the answer that e.g. helpers/dcpng/dcpng.h
// tells of.
struct SaverWriter {
    const wchar_t* library;
    const char* entry;
    const char* bytesEntry;      // the one that makes the bytes of a file in memory
    bool holdsExtras = false;    // that one takes them too
    bool zeroIsSuccess = false;  // what it answers
    const void* (*options)(const saving::SaveOptions& all);
};

// What a format's files can hold besides colours.
struct SaverMetadata {
    bool alpha = false;
    // Whether EXIF data are kept, and the place in them; null: files cannot hold them.
    int16_t (*exif)(const saving::SaveOptions& options) = nullptr;
    int16_t (*position)(const saving::SaveOptions& options) = nullptr;
    // Whether the profile is kept, of pictures in colours of their own; null: the same.
    int16_t (*profile)(const saving::SaveOptions& options) = nullptr;
};

struct SaverFormat {
    const wchar_t* name;         // for lists
    const wchar_t* description;  // for the save dialog
    // Without dots, in lower case: the usual one first, then other spellings.
    std::span<const std::wstring_view> extensions;
    std::span<const uint16_t> depths;  // bits per pixel; pictures of others are converted
    SaverMetadata metadata;
    SaverWriter writer;
    std::span<const SaverOption> options;  // as they follow in the settings
    int page;                              // its row on the options' page of formats, from 0
    // What is set, for that page.
    std::wstring (*described)(const saving::SaveOptions& options);
    // How a picture that was one of the format already loses by being saved, as the beginning of a
    // sentence that goes on with what is lost besides; null: it does not.
    std::wstring (*loss)(const saving::SaveOptions& options);
    // The options' lines in the help of the console converter.
    const wchar_t* help;
    const wchar_t* englishHelp;

    // Whether its files are to have the EXIF data of their pictures, and with the place.
    bool KeepsExif(const saving::SaveOptions& chosen) const {
        return metadata.exif != nullptr && metadata.exif(chosen) != 0;
    }
    bool KeepsPosition(const saving::SaveOptions& chosen) const {
        return metadata.position != nullptr && metadata.position(chosen) != 0;
    }

    // Whether pictures stay in colours of their own, with their profile.
    bool KeepsProfile(const saving::SaveOptions& chosen) const {
        return metadata.profile != nullptr && metadata.profile(chosen) != 0;
    }

    // With its dot, as files are named by the program.
    std::wstring Extension() const { return L'.' + std::wstring(extensions.front()); }
    // Whether an extension, without its dot, in any case, is one of the format's.
    bool HasExtension(std::wstring_view extension) const;
};

// In the order that the settings (SaveType1, SaveType2) count by, and all lists.
std::span<const SaverFormat> SaverFormats();

// What can be set for all of them at once.
std::span<const SaverOption> SharedSaverOptions();

// Their names, in that order.
std::vector<const wchar_t*> SaverFormatNames();

constexpr int32_t kBmpFormat = 0;
constexpr int32_t kPngFormat = 1;
constexpr int32_t kJpegFormat = 2;

// Null for a number that counts none.
const SaverFormat* SaverFormatAt(int32_t index);

// The format that a name's extension stands for, in any of its spellings; null for all others.
const SaverFormat* SaverFormatOf(const std::wstring& fileName);

}  // namespace tessary
