// Plug-ins of this program's own that were called otherwise in former versions.
#pragma once

#include <string>

namespace tessary {

// Whether a plug-in is one of ours under its former name, with the one that has taken its place
// beside it, as when a new version was unpacked over an old one. `product` is what it calls itself:
// another author's plug-in may have the same file name.
bool IsRenamedPlugin(const std::wstring& path, const std::wstring& product);

}  // namespace tessary
