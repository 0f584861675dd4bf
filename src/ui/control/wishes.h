// What the user has asked for while a step was under way: it is carried out at the step's end.
#pragma once

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

namespace tessary {

// The latest wish wins: a clicked entry takes away the steps asked for before it, and steps that
// follow lead on from there. Files to be collected for deletion are kept beside that.
struct Wishes {
    bool file = false;                      // show the file that is selected now
    bool member = false;                    // the same of an archive's members
    int steps = 0;                          // entries to go on by; negative: back
    int pages = 0;                          // of the selected file or member to go on by
    bool deletion = false;                  // of the collected files, from the disk
    int command = 0;                        // of the main window, to be run last; 0: none
    std::vector<std::wstring> marks;        // paths to be collected for deletion
    std::vector<std::wstring> deleted;      // paths to be deleted
    bool forGood = false;                   // these, past the recycle bin
    std::vector<std::wstring> transferred;  // paths to be moved, or copied
    bool moves = false;                     // these
    bool isFresh = false;   // some of it was asked for by more than a key that is held down
    bool isMotion = false;  // a motion was started that has not stepped yet

    bool Any() const {
        return Moves() || pages != 0 || command != 0 || deletion || !marks.empty() ||
               !deleted.empty() || !transferred.empty();
    }
    bool Moves() const { return file || member || steps != 0; }

    // An entry of a list was clicked; not `really` when that is the one being loaded already.
    void Click(bool isFile, bool really, bool repeated) {
        ForgetMoves();
        (isFile ? file : member) = really;
        isFresh = !repeated;
    }

    // A step of 1 or -1. A key that is being held down leads no further than one entry: nobody
    // knows how long it will be.
    void Step(int step, bool repeated) {
        command = pages = 0;
        Add(steps, step, repeated);
        isFresh = isFresh || !repeated;
    }

    // The same among the pages of what is being loaded.
    void Page(int step, bool repeated) {
        command = 0;
        Add(pages, step, repeated);
    }

    void Run(int wanted) { command = wanted; }

    void Mark(const std::wstring& path) {
        if (std::find(marks.begin(), marks.end(), path) == marks.end()) marks.push_back(path);
    }

    // Whoever has said once that it is for good has said so of what waits with it.
    void Delete(const std::vector<std::wstring>& paths, bool isForGood) {
        for (const std::wstring& path : paths) {
            if (std::find(deleted.begin(), deleted.end(), path) == deleted.end())
                deleted.push_back(path);
        }
        forGood = forGood || isForGood;
    }

    // The latest ones, for which there will be a dialog.
    void Transfer(std::vector<std::wstring> paths, bool isMove) {
        transferred = std::move(paths);
        moves = isMove;
    }

    void ForgetMoves() {
        file = member = isFresh = isMotion = false;
        steps = pages = command = 0;
    }

  private:
    static void Add(int& sum, int step, bool repeated) {
        if (!repeated || sum * step <= 0) sum += step;
    }
};

}  // namespace tessary
