// The one way to show a message, so that tests can answer in the user's place.
#pragma once

#include <functional>
#include <string>
#include <string_view>

namespace tessary {

// Title of every message that names none of its own.
inline constexpr std::wstring_view kApplicationTitle = L"てっさりビューア";

// Shows a message over the window that the user is in, or was in last before he went to another
// program, and waits for the answer; he is called, and nothing is taken from him. `style` is
// MessageBox's (MB_…) icon and buttons; the result is the pressed button (IDOK, …).
int ShowMessageBox(std::wstring_view text, unsigned style = 0,
                   std::wstring_view title = kApplicationTitle);

// Answers messages instead of the user; an empty function gives them back to the user.
using MessageBoxResponder =
    std::function<int(const std::wstring& text, unsigned style, const std::wstring& title)>;
void SetMessageBoxResponder(MessageBoxResponder responder);

}  // namespace tessary
