// The request that ends the message loop. Only the program may make it, but code that it hosts
// posts WM_QUIT as well, as if it were a program of its own.
#pragma once

namespace tessary {

// Asks the message loop of this, the user-interface thread to end with that status.
void RequestQuit(int status);

// Whether it was asked to, and has not ended yet; what WM_QUIT means else is nothing.
bool IsQuitRequested();

// Asks once more where it was asked before: loops of the system, as the one that moves windows, may
// have taken the request for theirs.
void RenewQuit();

// The loop has ended.
void QuitIsDone();

// After foreign code had the thread: takes its WM_QUIT out of the queue, and puts ours back if it
// was taken away. The other messages stay as they are.
void DropForeignQuit();

}  // namespace tessary
