// How somebody reads an archive or a folder.
#pragma once

namespace tessary {

struct BookChoice {
    bool isOpen = false;       // two pages at a time
    bool fromRight = true;     // the next page lies on the left
    bool coverIsAlone = true;  // the first page

    bool operator==(const BookChoice&) const = default;
};

}  // namespace tessary
