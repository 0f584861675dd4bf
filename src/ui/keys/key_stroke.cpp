#include "ui/keys/key_stroke.h"

#include <algorithm>
#include <array>
#include <cwchar>

namespace tessary {
namespace {

constexpr unsigned kModifierStep = 256;  // a stroke is one number: its key, and this times the rest

std::wstring NameOfKey(UINT key) {
    if ((key >= L'0' && key <= L'9') || (key >= L'A' && key <= L'Z')) {
        return {static_cast<wchar_t>(key)};
    }
    if (key >= VK_NUMPAD0 && key <= VK_NUMPAD9) {
        return L"テンキー" + std::to_wstring(key - VK_NUMPAD0);
    }
    if (key >= VK_F1 && key <= VK_F24) return L"F" + std::to_wstring(key - VK_F1 + 1);
    // As they stand on keyboards; the system's names are those of the number pad's.
    switch (key) {
        case VK_RETURN:
            return L"Enter";
        case VK_DELETE:
            return L"Delete";
        case VK_INSERT:
            return L"Insert";
        case VK_HOME:
            return L"Home";
        case VK_END:
            return L"End";
        case VK_PRIOR:
            return L"PageUp";
        case VK_NEXT:
            return L"PageDown";
        case VK_SPACE:
            return L"Space";
        case VK_BACK:
            return L"Backspace";
        case VK_LEFT:
            return L"←";
        case VK_UP:
            return L"↑";
        case VK_RIGHT:
            return L"→";
        case VK_DOWN:
            return L"↓";
        case VK_ADD:
            return L"+";
        case VK_SUBTRACT:
            return L"-";
        case VK_BROWSER_BACK:
            return L"戻る";
        case VK_BROWSER_FORWARD:
            return L"進む";
        default:
            break;
    }
    wchar_t name[40]{};
    GetKeyNameTextW(static_cast<LONG>(MapVirtualKeyW(key, MAPVK_VK_TO_VSC)) << 16, name, 40);
    if (*name == L'\0') return L"キー" + std::to_wstring(key);  // one that no keyboard has
    return name;
}

}  // namespace

std::wstring NameOf(const KeyStroke& stroke) {
    std::wstring name;
    if ((stroke.modifiers & FCONTROL) != 0) name += L"Ctrl+";
    if ((stroke.modifiers & FALT) != 0) name += L"Alt+";
    if ((stroke.modifiers & FSHIFT) != 0) name += L"Shift+";
    return name + NameOfKey(stroke.key);
}

std::wstring NamesOf(const std::vector<KeyStroke>& strokes) {
    std::wstring names;
    for (const KeyStroke& stroke : strokes)
        names += (names.empty() ? L"" : L", ") + NameOf(stroke);
    return names;
}

std::wstring ToText(const std::vector<KeyStroke>& strokes) {
    std::wstring text;
    for (const KeyStroke& stroke : strokes) {
        if (!text.empty()) text += L' ';
        text += std::to_wstring(stroke.modifiers * kModifierStep + stroke.key);
    }
    return text;
}

std::vector<KeyStroke> StrokesOfText(const std::wstring& text) {
    std::vector<KeyStroke> strokes;
    const wchar_t* at = text.c_str();
    while (*at != L'\0') {
        wchar_t* end = nullptr;
        const unsigned long number = std::wcstoul(at, &end, 10);
        if (end == at) break;
        at = end;
        const KeyStroke stroke{static_cast<WORD>(number % kModifierStep),
                               static_cast<BYTE>(number / kModifierStep & (FCONTROL | FSHIFT))};
        if (MayBeChosen(stroke) && !std::ranges::count(strokes, stroke)) strokes.push_back(stroke);
    }
    return strokes;
}

bool MayBeChosen(const KeyStroke& stroke) {
    constexpr std::array<WORD, 14> kNeverKeys{
        0,       VK_TAB,  VK_ESCAPE,  VK_MENU, VK_CONTROL, VK_SHIFT,      VK_F10,
        VK_LWIN, VK_RWIN, VK_CAPITAL, VK_KANA, VK_NUMLOCK, VK_PROCESSKEY, VK_APPS};
    if (std::ranges::count(kNeverKeys, stroke.key) > 0 || (stroke.modifiers & FALT) != 0)
        return false;
    const bool isArrow = stroke.key >= VK_LEFT && stroke.key <= VK_DOWN;
    if (isArrow && (stroke.modifiers & FCONTROL) == 0) return false;
    // acceleratorsClipboard, which fields for text have a use of their own for.
    constexpr std::array<KeyStroke, 5> kOfTexts{{{'A', FCONTROL},
                                                 {'C', FCONTROL},
                                                 {'V', FCONTROL},
                                                 {'Z', FCONTROL},
                                                 {'C', FCONTROL | FSHIFT}}};
    return std::ranges::count(kOfTexts, stroke) == 0;
}

}  // namespace tessary
