// What the user has asked for while a step was under way: it is carried out at the step's end.
#pragma once

#include <algorithm>
#include <string>
#include <vector>

namespace tessary {

// The latest wish wins: a clicked entry takes away the steps asked for before it, and steps that
// follow lead on from there. Files to be collected for deletion are kept beside that.
struct Wishes {
    bool file = false;                // show the file that is selected now
    bool member = false;              // the same of an archive's members
    int steps = 0;                    // entries to go on by; negative: back
    bool deletion = false;            // of the collected files, from the disk
    int command = 0;                  // of the main window, to be run last; 0: none
    std::vector<std::wstring> marks;  // paths to be collected for deletion
    bool isFresh = false;   // some of it was asked for by more than a key that is held down
    bool isMotion = false;  // a motion was started that has not stepped yet

    bool Any() const { return Moves() || command != 0 || deletion || !marks.empty(); }
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
        command = 0;
        if (!repeated || steps * step <= 0) steps += step;
        isFresh = isFresh || !repeated;
    }

    void Run(int wanted) { command = wanted; }

    void Mark(const std::wstring& path) {
        if (std::find(marks.begin(), marks.end(), path) == marks.end()) marks.push_back(path);
    }

    void ForgetMoves() {
        file = member = isFresh = isMotion = false;
        steps = command = 0;
    }
};

}  // namespace tessary
