// What showing needs of the window that the picture appears in. The main window implements it.
#pragma once

#include <string>

#include "picture/frames/animation.h"
#include "picture/picture.h"
#include "picture/view/sight.h"
#include "plugin/waited_call.h"

namespace tessary {

// Status bar panels, as users count them.
constexpr int kPluginCountPanel = 1;
constexpr int kShownFilePanel = 2;
constexpr int kScalePanel = 3;
constexpr int kNoticePanel = 4;  // there only when there is something to tell

class PictureView {
  public:
    // The view's own size, its scroll bars', and the work area of the screen that it is on: the
    // screen without taskbars, on the full screen all of it.
    virtual SightRoom Room() const = 0;

    // Puts a picture, which is not empty, into the view in place of the one before it, in the size
    // that the user has chosen. `prepared`: the picture in that size, if it was made already.
    virtual void SetPicture(Picture picture, const Picture& prepared) = 0;

    // Told behind SetPicture: that is of an animation, which the view may play.
    virtual void SetAnimation(const Animation& /*animation*/) {}

    // Empties the view.
    virtual void ClearPicture() = 0;

    // Empties the view and tells in its middle why there is no picture.
    virtual void ShowReason(const std::wstring& reason) = 0;

    // Sets the text of a status bar panel, one of the k…Panel numbers.
    virtual void SetPanelText(int panel, const std::wstring& text) = 0;

    // Lets the message loop run for a moment in the middle of a long read, so that the window stays
    // alive. False asks the read to stop.
    virtual bool Breathe() = 0;

    // Asked every moment while a plug-in in a process of its own is waited for; lets the message
    // loop run. kStops is meant for this call, and for what is being shown.
    virtual CallWish AwaitsCall(const WaitedCall& call) {
        TellProgress(call.done, call.total);
        return Breathe() ? CallWish::kGoesOn : CallWish::kStops;
    }

    // Told how far a read is, `done` of `total` in any unit; the total is 0 when nobody knows.
    virtual void TellProgress(int /*done*/, int /*total*/) {}

    // The same while the file is fetched from where it lies, before it can be read.
    virtual void TellFetching(int /*done*/, int /*total*/) {}

    // Whether the user waits for what is being shown. False when the entries only fly by, or he has
    // asked for another one meanwhile: then nothing is fetched for it.
    virtual bool AwaitsFile() const { return true; }

  protected:
    ~PictureView() = default;
};

}  // namespace tessary
