// The dark appearance: what can be read, and that nothing of it stays when it is left.
#include "ui/form/appearance.h"

#include <gtest/gtest.h>

#include <windows.h>
// The common controls need the types of windows.h.
#include <commctrl.h>

#include <cmath>
#include <map>
#include <string>
#include <vector>

#include "res/resource.h"
#include "ui/form/dialog.h"
#include "ui/form/dress.h"
#include "ui/form/form.h"
#include "ui/form/message_loop.h"

namespace tessary {
namespace {

constexpr int16_t kLightLook = static_cast<int16_t>(Appearance::kLight);
constexpr int16_t kDarkLook = static_cast<int16_t>(Appearance::kDark);

double LightOf(COLORREF color) {
    const auto part = [](int level) {
        const double share = level / 255.0;
        return share <= 0.04045 ? share / 12.92 : std::pow((share + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * part(GetRValue(color)) + 0.7152 * part(GetGValue(color)) +
           0.0722 * part(GetBValue(color));
}

double Contrast(COLORREF one, COLORREF other) {
    const double first = LightOf(one) + 0.05;
    const double second = LightOf(other) + 0.05;
    return first > second ? first / second : second / first;
}

TEST(DarkColorsTest, TextsCanBeReadAndEdgesSeen) {
    for (const COLORREF ground :
         {kDark.view, kDark.field, kDark.face, kDark.button, kDark.hot, kDark.pressed})
        EXPECT_GE(Contrast(kDark.text, ground), 4.5) << std::hex << ground;
    for (const COLORREF ground : {kDark.field, kDark.face})
        EXPECT_GE(Contrast(kDark.disabledText, ground), 4.5) << std::hex << ground;
    EXPECT_GE(Contrast(kDark.highlightText, kDark.highlight), 4.5);
    EXPECT_GE(Contrast(kDark.text, kDark.disabledText), 1.5);
    for (const COLORREF mark : {kDark.edge, kDark.accent})
        EXPECT_GE(Contrast(mark, kDark.face), 3.0) << std::hex << mark;
}

// A control of each kind, enabled and disabled.
class DressedForm final : public Form {
  public:
    DressedForm()
        : Form({.className = L"TessaryAppearanceTest", .caption = L"", .style = WS_POPUP}) {}

    std::vector<HWND> controls;

  private:
    void Form_Load() override {
        Add(L"BUTTON", BS_DEFPUSHBUTTON);
        Add(L"BUTTON", BS_AUTOCHECKBOX);
        Add(L"BUTTON", BS_AUTORADIOBUTTON);
        Add(L"BUTTON", BS_GROUPBOX);
        Add(L"EDIT", 0);
        Add(L"EDIT", ES_READONLY);
        Add(L"STATIC", SS_LEFT);
        Add(L"COMBOBOX", CBS_DROPDOWNLIST);
        Add(L"COMBOBOX", CBS_DROPDOWN);
        Add(L"LISTBOX", 0);
        Add(WC_LISTVIEWW, LVS_REPORT);
        Add(WC_TREEVIEWW, 0);
        Add(STATUSCLASSNAMEW, CCS_NOPARENTALIGN | CCS_NORESIZE);
        Add(PROGRESS_CLASSW, 0);
        Add(TRACKBAR_CLASSW, 0);
    }
    void Add(const wchar_t* className, DWORD style) {
        constexpr int kWidth = 150;
        constexpr int kHeight = 40;
        for (const DWORD state : {DWORD{0}, DWORD{WS_DISABLED}}) {
            const auto place = static_cast<int>(controls.size());
            const HWND control =
                CreateWindowExW(0, className, L"HHHHHHH", WS_CHILD | WS_VISIBLE | style | state,
                                place % 4 * kWidth, place / 4 * kHeight, kWidth, kHeight, Handle(),
                                nullptr, ProgramInstance(), nullptr);
            controls.push_back(control);
            Fill(control, className);
        }
    }
    static void Fill(HWND control, const std::wstring& className) {
        static wchar_t text[] = L"HHHHHHH";
        const auto send = [&](UINT message, WPARAM wParam, const void* lParam) {
            SendMessageW(control, message, wParam, reinterpret_cast<LPARAM>(lParam));
        };
        if (className == L"LISTBOX") send(LB_ADDSTRING, 0, text);
        if (className == L"COMBOBOX") {
            send(CB_ADDSTRING, 0, text);
            send(CB_SETCURSEL, 0, nullptr);
        }
        LVCOLUMNW column{};
        column.mask = LVCF_TEXT | LVCF_WIDTH;
        column.cx = 100;
        column.pszText = text;
        if (className == WC_LISTVIEWW) send(LVM_INSERTCOLUMNW, 0, &column);
        TVINSERTSTRUCTW entry{};
        entry.item.mask = TVIF_TEXT;
        entry.item.pszText = text;
        if (className == WC_TREEVIEWW) send(TVM_INSERTITEMW, 0, &entry);
        if (className == STATUSCLASSNAMEW) send(SB_SETTEXTW, 0, text);
        if (className == PROGRESS_CLASSW) send(PBM_SETPOS, 50, nullptr);
    }
};

// What is on the screen of a window, row by row.
std::vector<COLORREF> PixelsOf(HWND window) {
    RECT area{};
    GetClientRect(window, &area);
    const HDC screen = GetDC(window);
    std::vector<COLORREF> pixels;
    for (int y = 0; y < area.bottom; ++y)
        for (int x = 0; x < area.right; ++x)
            pixels.push_back(GetPixel(screen, x, y));
    ReleaseDC(window, screen);
    return pixels;
}

std::wstring NameOfClass(HWND window) {
    wchar_t name[64] = {};
    GetClassNameW(window, name, 64);
    return name;
}

class AppearanceTest : public testing::Test {
  protected:
    void SetUp() override {
        const INITCOMMONCONTROLSEX all{sizeof(all), ICC_WIN95_CLASSES | ICC_STANDARD_CLASSES};
        InitCommonControlsEx(&all);
        SetAppearance(kLightLook);
        ASSERT_TRUE(form_.Load());
        SetWindowPos(form_.Handle(), HWND_TOPMOST, 0, 0, 600, 400, SWP_SHOWWINDOW);
        Paint();
    }
    void TearDown() override { SetAppearance(kLightLook); }
    void Paint() const {
        DoEvents();
        RedrawWindow(form_.Handle(), nullptr, nullptr,
                     RDW_INVALIDATE | RDW_ERASE | RDW_UPDATENOW | RDW_ALLCHILDREN);
        GdiFlush();
    }
    DressedForm form_;
};

TEST_F(AppearanceTest, EveryControlIsDarkAndReadableAndLightAgainAsBefore) {
    const std::vector<COLORREF> before = PixelsOf(form_.Handle());
    SetAppearance(kDarkLook);
    Paint();
    for (const HWND control : form_.controls) {
        std::map<COLORREF, int> counts;
        const std::vector<COLORREF> pixels = PixelsOf(control);
        for (const COLORREF pixel : pixels)
            ++counts[pixel];
        COLORREF ground = 0;
        for (const auto& [color, count] : counts)
            if (count > counts[ground]) ground = color;
        int readable = 0;
        for (const auto& [color, count] : counts)
            if (Contrast(color, ground) >= 4.5) readable += count;
        const std::wstring name = NameOfClass(control);
        const bool isEnabled = IsWindowEnabled(control) != FALSE;
        EXPECT_LT(LightOf(ground), 0.1) << testing::PrintToString(name) << isEnabled;
        const bool hasText = name != TRACKBAR_CLASSW;
        EXPECT_TRUE(!hasText || readable > 20) << testing::PrintToString(name) << isEnabled;
        // Nothing is left that the system would have in a light window.
        EXPECT_EQ(counts[RGB(0xFF, 0xFF, 0xFF)] > static_cast<int>(pixels.size()) / 4, false)
            << testing::PrintToString(name) << isEnabled;
    }
    SetAppearance(kLightLook);
    Paint();
    EXPECT_TRUE(PixelsOf(form_.Handle()) == before);
}

class TextDialog final : public Dialog {
  public:
    TextDialog() : Dialog(dialogRename) {}
};

TEST_F(AppearanceTest, OpenDialogsFollowAndNewOnesComeUpSo) {
    TextDialog dialog;
    const auto ground = [&] {
        SetWindowPos(dialog.Handle(), HWND_TOPMOST, 0, 0, 0, 0, SWP_NOSIZE);
        RedrawWindow(dialog.Handle(), nullptr, nullptr,
                     RDW_INVALIDATE | RDW_ERASE | RDW_UPDATENOW | RDW_ALLCHILDREN);
        return PixelsOf(dialog.Handle()).front();
    };
    ASSERT_TRUE(dialog.Show(nullptr));
    EXPECT_EQ(ground(), GetSysColor(COLOR_BTNFACE));
    SetAppearance(kDarkLook);
    EXPECT_EQ(ground(), kDark.face);
    dialog.Close(IDCANCEL);
    ASSERT_TRUE(dialog.Show(nullptr));
    EXPECT_EQ(ground(), kDark.face);
    SetAppearance(kLightLook);
    EXPECT_EQ(ground(), GetSysColor(COLOR_BTNFACE));
}

}  // namespace
}  // namespace tessary
