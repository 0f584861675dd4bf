// From a file name, or an archive's member, to the picture in the view: which kind of file it is,
// who decodes it, and how it is laid out.
#pragma once

#include <cstdint>
#include <string>

#include "picture/show/member_list.h"
#include "picture/show/picture_view.h"
#include "picture/show/shown_file.h"

namespace tessary {

// Which kind of file this is, without showing it and without a message. Showing the same file next
// takes the answer over and costs no second look for its plug-in.
FileKind QueryFileKind(const std::wstring& path);

// Whether a message box tells the user what cannot be shown; ShownFile has the text either way.
enum class OnFailure { kTellUser, kStaySilent };

// Reads a picture file, makes it the current picture and shows it in the view; of an archive fills
// the list with the members. For what cannot be read, for what nobody claims, and when the view
// asks the read to stop, the answer is kFileUnknown and the picture shown before stays.
ShownFile ShowFile(const std::wstring& path, PictureView& view, MemberList& members,
                   OnFailure onFailure);

// The same for a member of an archive, by its `position` of the list that ShowFile filled: it is
// extracted to memory. An archive in an archive is only recognised.
ShownFile ShowArchiveMember(const std::wstring& archivePath, int32_t position, PictureView& view,
                            OnFailure onFailure);

// Lays the current picture out in the view at the display size mode; with no current picture the
// view is emptied. False when the picture could not be put into the view.
bool DisplayCurrentPicture(PictureView& view);

}  // namespace tessary
