// What lists of any number of entries show, and what the user does there.
#pragma once

#include <windows.h>

#include <functional>
#include <string>
#include <vector>

#include "ui/form/entry_paint.h"

namespace tessary {

// What a list shows. Asked whenever the list draws: nothing of it may take long. Indexes count from
// 0 and may be out of the list, which has changed meanwhile.
class ListContent {
  public:
    virtual int Count() const = 0;
    virtual std::wstring Text(int index) const = 0;
    // What is told of an entry where the pointer rests on it.
    virtual std::wstring Tip(int index) const = 0;
    virtual int Cursor() const = 0;  // the entry in view; -1: none
    virtual int ChosenCount() const { return 0; }
    virtual bool IsChosen(int /*index*/) const { return false; }

    // The small picture of an entry, as far as it is there.
    virtual EntryPicture PictureOf(int /*index*/) const { return {}; }
    // These are in sight, in a list of small pictures; a last one before the first: none is.
    virtual void InSight(int /*first*/, int /*last*/) {}

  protected:
    ~ListContent() = default;
};

// What the user wants of a list. Empty functions: nothing comes of it.
struct ListEvents {
    // That entry in view.
    std::function<void(int)> select{};
    // These entries and no others chosen, in ascending order; what is in view stays.
    std::function<void(std::vector<int>)> choose{};
    // Its menu at that place of the screen, in pixels.
    std::function<void(POINT)> menu{};
};

// The entry that begins with that text, whatever its case, from `start` on and round the end; -1:
// there is none.
int FindEntry(const ListContent& content, const std::wstring& text, int start);

}  // namespace tessary
