// The thread's stack of activation contexts, by which the system picks versions of libraries and
// window classes. Its entries are frames that lie on the thread's stack or in the heap, and who
// takes one off that is not the innermost gets an exception.
#pragma once

namespace tessary::susiectl {

// The innermost entry; null when there is none.
void* ActivationFrame();

// Makes `frame`, which ActivationFrame has answered and is still in use, the innermost again. For
// who has jumped over code that did not come to take its own off.
void SetActivationFrame(void* frame);

}  // namespace tessary::susiectl
