// What is remembered of what the user has opened, from one run of the program to the next: recent
// files and folders, his bookmarks, where he stopped in archives and folders, and in his last run.
//
// Sections of the settings store: `Recent`, `Bookmarks`, `Places`, `Books` and `Orders` have a
// value for each entry, `Memory` the switch and the last run's place. Nothing is kept between two
// calls: copies of the program that run at the same time share the store, and none loses what
// another has put there. What the store does not take is not remembered; nothing here throws but
// for want of memory.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "app/base/entry_order.h"
#include "places/book_choice.h"
#include "places/place.h"

namespace tessary {

constexpr size_t kMostRecent = 15;
constexpr size_t kMostBookmarks = 99;
constexpr size_t kMostPlaces = 500;  // archives and folders; those not met for longest go first

// Whether anything is remembered at all. Switching it off forgets all but the bookmarks, in which
// nothing is put either meanwhile.
bool IsRemembering();
void SetRemembering(bool on);

// Forgets all but the bookmarks; and those.
void ForgetPlaces();
void ForgetBookmarks();

// --- What was opened by hand ---
// Full paths of files, archives and folders (with a trailing backslash), newest first.
std::vector<std::wstring> RecentPaths();
void AddRecent(const std::wstring& path);
void DropRecent(const std::wstring& path);

// --- Bookmarks ---
// Newest first.
std::vector<Place> Bookmarks();
bool IsBookmark(const Place& place);
// False when there are too many, or nothing is remembered.
bool AddBookmark(const Place& place);
void DropBookmark(const Place& place);
// All to places in that file.
void DropBookmarksOf(const std::wstring& file);

// A file has another path now: what is remembered of it goes along.
void FollowFile(const std::wstring& path, const std::wstring& newPath);

// --- Where the user stopped ---
// In an archive or a file with pages (its full path), or in a folder (with a trailing backslash);
// none when that is not known.
Place StoppedAt(const std::wstring& container);
// Where he stopped in the file of a place, if it is an archive: else the place itself.
Place StopWithin(const Place& place);
void KeepStop(const std::wstring& container, const Place& place);
// --- How he reads ---
// An archive or a folder, as above; none where nothing was chosen.
std::optional<BookChoice> BookOf(const std::wstring& container);
void KeepBook(const std::wstring& container, const BookChoice& choice);
// In which order it is listed; likewise.
std::optional<EntryOrder> OrderOf(const std::wstring& container);
void KeepOrder(const std::wstring& container, const EntryOrder& order);

// What was seen last of all.
Place LastSeen();
void KeepLastSeen(const Place& place);

}  // namespace tessary
