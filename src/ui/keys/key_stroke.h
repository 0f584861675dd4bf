// A key with what is held down with it.
#pragma once

#include <windows.h>

#include <compare>
#include <string>
#include <vector>

namespace tessary {

struct KeyStroke {
    WORD key = 0;        // VK_…
    BYTE modifiers = 0;  // FCONTROL, FSHIFT, FALT, as in an ACCEL

    auto operator<=>(const KeyStroke&) const = default;
};

// As menus show it: "Ctrl+Shift+S".
std::wstring NameOf(const KeyStroke& stroke);
// "Enter, PageDown"; empty for none.
std::wstring NamesOf(const std::vector<KeyStroke>& strokes);

// For the settings store, and back; what is no text of ToText, or no key, is left out.
std::wstring ToText(const std::vector<KeyStroke>& strokes);
std::vector<KeyStroke> StrokesOfText(const std::wstring& text);

// Whether commands may have it: not what windows, menus and lists need for themselves, nor what
// scrolls, goes back or copies everywhere.
bool MayBeChosen(const KeyStroke& stroke);

}  // namespace tessary
