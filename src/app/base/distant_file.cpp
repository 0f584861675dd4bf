#include "app/base/distant_file.h"

#include <windows.h>

#include <utility>

#include "app/base/paths.h"

namespace tessary {
namespace {

DistantFiles& Current() {
    static DistantFiles files;
    return files;
}

}  // namespace

bool IsNotOnThisDisk(const std::wstring& path) {
    if (Current().isElsewhere) return Current().isElsewhere(path);
    return LiesElsewhere(GetFileAttributesW(ExtendedPath(path).c_str()));
}

void SetDistantFiles(DistantFiles files) {
    Current() = std::move(files);
}

const DistantFiles& CurrentDistantFiles() {
    return Current();
}

}  // namespace tessary
