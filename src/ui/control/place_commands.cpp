#include "ui/control/place_commands.h"

#include <algorithm>
#include <utility>

#include "app/base/message_box.h"
#include "app/base/paths.h"
#include "app/base/text.h"
#include "app/settings/modValue.h"
#include "picture/ahead/pictures_ahead.h"
#include "places/place_memory.h"
#include "res/resource.h"
#include "ui/form/activity.h"
#include "ui/form/menu.h"

namespace tessary {
namespace {

constexpr UINT kRestMilliseconds = 1000;  // how long a picture is looked at that is remembered
constexpr size_t kLongestCaption = 60;    // characters
constexpr wchar_t kNone[] = L"（なし）";

// `&1` to `&9`, and names without a number behind them.
std::wstring Numbered(size_t index, const std::wstring& text) {
    const std::wstring number = index < 9 ? L"&" + std::to_wstring(index + 1) + L"  " : L"     ";
    return number + AsMenuCaption(ShortenedPath(text, kLongestCaption));
}

// What a folder is remembered by.
std::wstring RememberedPath(const std::wstring& path, bool isFolder) {
    return isFolder && !path.ends_with(L'\\') ? path + L'\\' : path;
}

HMENU SubMenuOf(HMENU menu, int id) {
    MENUITEMINFOW item{};
    item.cbSize = sizeof(item);
    item.fMask = MIIM_SUBMENU;
    return GetMenuItemInfoW(menu, static_cast<UINT>(id), FALSE, &item) ? item.hSubMenu : nullptr;
}

// Puts entries in the place of all from the one of number `first` on, or of the text that there is
// none.
void Refill(HMENU menu, int first, const std::vector<std::wstring>& captions) {
    if (menu == nullptr) return;
    int at = 0;
    while (at < GetMenuItemCount(menu) && GetMenuItemID(menu, at) != static_cast<UINT>(first))
        ++at;
    while (GetMenuItemCount(menu) > at)
        DeleteMenu(menu, static_cast<UINT>(at), MF_BYPOSITION);
    UINT id = static_cast<UINT>(first);
    for (const std::wstring& caption : captions)
        AppendMenuW(menu, MF_STRING, id++, caption.c_str());
    // Its number stays, so that the place is found again.
    if (captions.empty()) AppendMenuW(menu, MF_STRING | MF_GRAYED, id, kNone);
}

}  // namespace

PlaceCommands::PlaceCommands(frmMain& window, ControlBar& bar)
    : window_(window), bar_(bar), lastRun_(LastSeen()), rest_([this] {
          rest_.Stop();
          visits_.Keep();
      }) {
    CommandTable& commands = window_.Commands();
    commands.OnShow([this](HMENU menu) { FillMenu(menu); });
    for (size_t i = 0; i < kMostRecent; ++i) {
        commands.Register(commandRecent_0 + static_cast<int>(i),
                          {.run =
                               [this, i] {
                                   if (i < recent_.size()) window_.OpenLater({recent_[i]});
                               },
                           .enabled = [this, i] { return i < recent_.size(); },
                           .whileLoading = true});
    }
    for (size_t i = 0; i < kMostBookmarks; ++i) {
        const auto isThere = [this, i] { return i < bookmarks_.size(); };
        commands.Register(commandBookmark_0 + static_cast<int>(i), {.run =
                                                                        [this, i, isThere] {
                                                                            if (isThere())
                                                                                Open(bookmarks_[i]);
                                                                        },
                                                                    .enabled = isThere,
                                                                    .whileLoading = true});
        commands.Register(commandDropBookmark_0 + static_cast<int>(i),
                          {.run =
                               [this, i, isThere] {
                                   if (isThere()) DropBookmark(bookmarks_[i]);
                               },
                           .enabled = isThere,
                           .whileLoading = true});
    }
    commands.Register(commandToggleBookmark,
                      {.run = [this] { ToggleBookmark(); },
                       .enabled =
                           [this] {
                               const Place place = ShownPlace();
                               return !place.IsNone() && (IsRemembering() || IsBookmark(place));
                           },
                       .checked = [this] { return IsBookmark(ShownPlace()); }});
    commands.Register(commandGoOn,
                      {.run = [this] { GoOn(); },
                       .enabled = [this] { return !visits_.Offer().IsNone() && IsRemembering(); }});
    commands.Register(commandLastRun,
                      {.run = [this] { Open(lastRun_); },
                       .enabled = [this] { return !lastRun_.IsNone() && !LastSeen().IsNone(); },
                       .whileLoading = true});
    commands.Register(commandForget, {.run = [this] { AskToForget(); }, .whileLoading = true});
    commands.Register(commandMemoryChanged, {.run = [this] { MemoryChanged(); }});
    window_.OnPictureSource([this] { PictureShown(); });
    window_.OnMissing([this](const std::wstring& path) { OfferToDrop(path); });
    window_.OnFileMoved([this](const std::wstring& path, const std::wstring& newPath) {
        visits_.Follow(path, newPath);
        FollowFile(path, newPath);
        jumpList_.ShowRecent();
    });
    window_.OnOpenByHand(
        [this](const std::vector<std::wstring>& paths, const std::function<bool()>& open) {
            return OpenByHand(paths, open);
        });
}

// --- What happens ---

// Of several at once their folder is remembered: no single path brings them back.
bool PlaceCommands::OpenByHand(const std::vector<std::wstring>& paths,
                               const std::function<bool()>& open) {
    if (paths.empty()) return open();
    const bool isOne = paths.size() == 1;
    const bool isFolder = isOne && IsFolder(paths.front());
    const std::wstring path =
        isOne ? RememberedPath(paths.front(), isFolder) : FolderOf(paths.front());
    visits_.Begin(isFolder ? path : std::wstring());
    if (isOne && Values().general.goOnAtOnce != 0 && IsRemembering()) {
        const Place stop = StopWithin(StoppedAt(path));
        if (!stop.IsNone()) bar_.BeginAt(stop);
    }
    if (!open()) return false;
    AddRecent(path);
    jumpList_.ShowRecent();
    if (isFolder) TellOffer();
    return true;
}

Place PlaceCommands::ShownPlace() const {
    const PictureSource& source = window_.Source();
    if (source.path.empty() || !window_.PictureShown()) return {};
    Place place{.file = source.path, .page = source.page};
    if (const std::optional<ShownMember> member = bar_.MemberOf(source))
        place.member = member->name;
    return place;
}

void PlaceCommands::PictureShown() {
    const Place place = ShownPlace();
    if (place.IsNone()) return;
    if (visits_.Show(place)) TellOffer();
    rest_.Start(kRestMilliseconds);
}

// A show is not disturbed.
void PlaceCommands::TellOffer() {
    const Place offer = visits_.Offer();
    if (offer.IsNone() || bar_.IsPlaying() || !IsRemembering()) return;
    window_.ShowNote(L"前回は " + NameOf(offer) + L" まで見ました（Ctrl+R で続きから）");
}

void PlaceCommands::OfferToDrop(const std::wstring& path) {
    const auto isIt = [&](const std::wstring& one) { return EqualsIgnoreCase(one, path); };
    const bool isRecent = std::ranges::any_of(RecentPaths(), isIt);
    const bool isMarked =
        std::ranges::any_of(Bookmarks(), [&](const Place& place) { return isIt(place.file); });
    if (!isRecent && !isMarked) return;
    const wchar_t* const where = isRecent && isMarked ? L"最近使ったものとブックマーク"
                                 : isMarked           ? L"ブックマーク"
                                                      : L"最近使ったもの";
    if (ShowMessageBox(
            path + L"\r\nが見つかりません。移動または削除されたか、今は接続できません。\r\n\r\n" +
                where + L"から外しますか？",
            MB_YESNO | MB_ICONQUESTION | MB_DEFBUTTON2) != IDYES) {
        return;
    }
    if (isRecent) DropRecent(path);
    if (isMarked) DropBookmarksOf(path);
    jumpList_.ShowRecent();
}

// --- The commands ---

// Where its file is not listed it is opened like any other.
void PlaceCommands::Open(const Place& place) {
    if (bar_.GoTo(place)) return;
    bar_.BeginAt(place);
    window_.OpenLater({place.file});
}

void PlaceCommands::GoOn() {
    const Place offer = visits_.Offer();
    if (offer.IsNone()) return;
    visits_.DropOffer();
    if (!bar_.GoTo(offer)) {
        window_.ShowNote(FileNameOf(offer.file) + L" は一覧にありません。");
    } else if (ShownPlace() != offer) {
        window_.ShowNote(NameOf(offer) + L" が見つかりませんでした。");
    }
}

void PlaceCommands::ToggleBookmark() {
    const Place place = ShownPlace();
    if (place.IsNone()) return;
    if (IsBookmark(place)) {
        DropBookmark(place);
        window_.ShowNote(L"ブックマークから外しました: " + NameOf(place));
    } else if (AddBookmark(place)) {
        window_.ShowNote(L"ブックマークに追加しました: " + NameOf(place));
    } else {
        window_.ShowNote(L"ブックマークは " + std::to_wstring(kMostBookmarks) + L" 個までです。");
    }
}

void PlaceCommands::AskToForget() {
    const bool hasBookmarks = !Bookmarks().empty();
    const int answer =
        hasBookmarks ? ShowMessageBox(
                           L"最近使ったものと続きの位置を消去します。\r\n"
                           L"ブックマークも消去しますか？\r\n\r\n"
                           L"「いいえ」では、ブックマークだけを残します。",
                           MB_YESNOCANCEL | MB_ICONQUESTION | MB_DEFBUTTON3)
                     : ShowMessageBox(L"最近使ったものと続きの位置を消去します。よろしいですか？",
                                      MB_OKCANCEL | MB_ICONQUESTION | MB_DEFBUTTON2);
    if (answer == IDCANCEL) return;
    if (answer == IDYES) ForgetBookmarks();
    ForgetPlaces();
    Ahead().Thumbs().DeleteKept();
    Forget();
    jumpList_.ShowRecent();
}

// What this run knows by heart.
void PlaceCommands::Forget() {
    visits_.Forget();
    lastRun_ = {};
}

void PlaceCommands::MemoryChanged() {
    if (!IsRemembering()) {
        Ahead().Thumbs().DeleteKept();
        Forget();
    }
    jumpList_.ShowRecent();
}

void PlaceCommands::FillMenu(HMENU menu) {
    const HMENU recent = SubMenuOf(menu, menuRecent);
    const HMENU bookmarks = SubMenuOf(menu, menuBookmarks);
    if (recent != nullptr) recent_ = RecentPaths();
    if (bookmarks != nullptr) bookmarks_ = Bookmarks();
    std::vector<std::wstring> captions;
    for (const std::wstring& path : recent_)
        captions.push_back(Numbered(captions.size(), path));
    Refill(recent, commandRecent_0, captions);
    captions.clear();
    std::vector<std::wstring> drops;
    for (const Place& place : bookmarks_) {
        const std::wstring inner = InnerNameOf(place);
        const std::wstring text = inner.empty() ? place.file : inner + L" - " + place.file;
        captions.push_back(Numbered(captions.size(), text));
        drops.push_back(AsMenuCaption(ShortenedPath(text, kLongestCaption)));
    }
    Refill(bookmarks, commandBookmark_0, captions);
    Refill(SubMenuOf(menu, menuDropBookmark), commandDropBookmark_0, drops);
}

}  // namespace tessary
