// Why a file is not converted that could not be read.
#pragma once

#include <string>

#include "convert/file_report.h"
#include "picture/read/plugin_failure.h"
#include "plugin/search.h"

namespace tessary {

FileReason ReasonOf(const PluginFailure& failure);
// The same of what is unknown because the archive plug-in that knows it could not list it.
FileReason ReasonOf(const Search::Refusal& refusal);
// The reason for the user, with the plug-in's name and what it tells.
std::wstring FailureText(const PluginFailure& failure, const std::wstring& pluginKey);
std::wstring FailureText(const Search::Refusal& refusal);

// The reason why a file of unknown kind is not converted.
FileReason ReasonUnknown(const std::wstring& path);

}  // namespace tessary
