// A file that is to be converted.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "convert/file_report.h"
#include "picture/picture.h"
#include "picture/show/shown_file.h"
#include "plugin/CollectionSusie.h"

namespace tessary {

// What a plug-in has answered that failed, and what it tells of it.
struct PluginFailure {
    uint32_t result = 0;
    std::wstring function;
    std::wstring text;
    susie::Condition condition = susie::kConditionNone;
};

// What the plug-in's last call has come to.
PluginFailure FailureOf(const clsSusie& plugin, uint32_t result);

FileReason ReasonOf(const PluginFailure& failure);
// The same of what is unknown because the archive plug-in that knows it could not list it.
FileReason ReasonOf(const Search::Refusal& refusal);
// The reason for the user, with the plug-in's name and what it tells.
std::wstring FailureText(const PluginFailure& failure, const std::wstring& pluginKey);

struct SourcePicture {
    Picture picture{};         // empty when it could not be read
    std::wstring pluginKey{};  // of the plug-in that read it, or was the last to fail
    bool isArchive = false;    // which is an archive plug-in: picture plug-ins had failed
    bool isRefused = false;    // no plug-in takes the file any more
    PluginFailure failure{};   // of a plug-in that took it; result 0: it did not fail
    std::wstring damage{};     // what is missing of the picture, for the user; empty: it is whole
};

struct SourceFile {
    FileKind kind = kFileUnknown;
    std::wstring pluginKey;                    // of a picture and an archive
    std::optional<Search::Refusal> refusal{};  // of an unknown one
    std::optional<SourcePicture> picture;  // of a bitmap or picture, as soon as it has been read
};

// Finds out what a file is, by its content. The plug-in that accepts it stays bound to it.
SourceFile LookAtFile(const std::wstring& path);

// The reason why a file of unknown kind is not converted.
FileReason ReasonUnknown(const std::wstring& path);

// Empty when the bitmap file cannot be read.
SourcePicture ReadBitmapSource(const std::wstring& path, const SusieProgress& progress);

// Decodes the file with the plug-in of that key; when it fails with the next one that takes the
// file, and so on. None of them is bound then, but for one of an archive.
SourcePicture DecodeSource(const std::wstring& path, const std::wstring& pluginKey,
                           const SusieProgress& progress);

}  // namespace tessary
