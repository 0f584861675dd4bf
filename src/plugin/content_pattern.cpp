#include "plugin/content_pattern.h"

#include "app/base/paths.h"
#include "plugin/susie_library.h"

namespace tessary {

std::wstring ContentPatternOf(const std::wstring& path) {
    const SusieLibrary* const library = FindSusieLibrary();
    if (library == nullptr) return {};
    switch (library->getFileInformation(ExtendedPath(path).c_str())) {
        case susiectl::kContentBmp:
            return L"*.BMP";
        case susiectl::kContentPng:
            return L"*.PNG";
        case susiectl::kContentJpeg:
            return L"*.JPG";
        case susiectl::kContentGif:
            return L"*.GIF";
        case susiectl::kContentLzh:
            return L"*.LZH";
        case susiectl::kContentZip:
            return L"*.ZIP";
        default:
            return {};
    }
}

}  // namespace tessary
