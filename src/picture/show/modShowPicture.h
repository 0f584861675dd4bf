// From a file name, or an archive's member, to the picture in the view.
#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "picture/ahead/ahead_picture.h"
#include "picture/show/member_list.h"
#include "picture/show/picture_view.h"
#include "picture/show/read_to_show.h"
#include "picture/show/shown_file.h"

namespace tessary {

// Answers what is to be shown in place of a picture that was read: the page of a book with its
// neighbour (`JoinPages`). None: the picture itself.
using LayOpen = std::function<ReadToShow(ReadToShow page)>;

// Reads a picture file, which is fetched first if need be, makes it the current picture and shows
// it in the view; of an archive fills the list with the members. For what cannot be read, for what
// nobody claims, and when the view asks the read to stop, the answer is kFileUnknown, and the view
// has the reason in place of a picture; so it has for an archive without members. The picture shown
// before stays until the read has ended, and that of an archive until a member is shown.
ShownFile ShowFile(const std::wstring& path, PictureView& view, MemberList& members,
                   const LayOpen& layOpen = {});

// The same for one of the pages that ShowFile has told of, from 0.
ShownFile ShowPage(const std::wstring& path, uint32_t page, PictureView& view,
                   const LayOpen& layOpen = {});

// The same for a member of an archive, by its `position` of the list that ShowFile filled: it is
// extracted to memory. An archive in an archive is only recognised; the view tells so. `page`: of
// the pages that this has told of, from 0.
ShownFile ShowArchiveMember(const std::wstring& archivePath, int32_t position, PictureView& view,
                            uint32_t page = 0, const LayOpen& layOpen = {});

// Makes one picture of two pages that were read; all else that is told stays that of `page`, but
// what is wrong with either. False, with the page as it was, when there is no memory for both.
bool JoinPages(ReadToShow& page, const ReadToShow& neighbor, bool isLeft);

// Puts the reason into the view why a file is not shown; there is no current picture then.
void ShowReasonFor(PictureView& view, const std::wstring& reason);

// Lays the current picture out in the view at the display size mode; with no current picture the
// view is emptied. `prepared`: made of it by PreparationFor; it counts if its size is the wanted
// one. False when the picture could not be put into the view.
bool DisplayCurrentPicture(PictureView& view, const Picture& prepared = {});

// Makes of pictures, on any thread, what DisplayCurrentPicture would show of them now.
PreparePicture PreparationFor(const PictureView& view);

}  // namespace tessary
