// Ends guarded calls whose exceptions cannot reach the guard's own frame any more, because the
// called code has destroyed the thread's exception chain or used up the stack.
#pragma once

namespace tessary::susiectl {

// Once for the library, before and after all calls.
void SpreadSafetyNet();
void RemoveSafetyNet();

}  // namespace tessary::susiectl
