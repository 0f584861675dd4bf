// Having a file fetched that is to be shown and is not on this disk.
#pragma once

#include <string>

#include "picture/show/picture_view.h"

namespace tessary {

enum class FetchEnd {
    kIsHere,    // it can be read now, or could be all the time
    kPassedBy,  // nobody waits for it
    kStopped,   // the view has asked to stop
    kFailed,
};

// Waits a moment before anything is fetched: what is stepped over fast is left alone. Then fetches
// the file, while the view is told how far it is and asked whether to go on. A film, a document and
// the like, which by their names are no pictures, fail. `failure` receives the reason then.
FetchEnd FetchToShow(const std::wstring& path, PictureView& view, std::wstring& failure);

}  // namespace tessary
