// Saving the shown picture: under which name, over what, and what the user is told.
#include "ui/control/save_commands.h"

#include <algorithm>
#include <random>
#include <tuple>

#include "app/base/paths.h"
#include "helpers/color/color_profile.h"
#include "picture/current_picture.h"
#include "picture/metadata/picture_origin.h"
#include "picture/save/save_picture.h"
#include "tests/src/ui/main/main_window.h"
#include "tests/support/bitmap_image.h"
#include "tests/support/content_of.h"
#include "tests/support/finished_folder.h"
#include "tests/support/helper_libraries.h"
#include "tests/support/temporary_folder.h"
#include "ui/control/drag_out.h"
#include "ui/control/save_name.h"
#include "ui/control/turn_file_command.h"
#include "ui/form/file_block.h"
#include "ui/form/timer.h"

namespace tessary::test {
namespace {

TEST(SaveNameTest, TheExtensionIsTheChosenFormats) {
    for (const auto& [name, format, complete] : {std::tuple{L"b", kPngFormat, L"b.png"},
                                                 {L"b.JPEG", kPngFormat, L"b.png"},
                                                 {L"b.JPG", kJpegFormat, L"b.JPG"},
                                                 {L"v1.2", kBmpFormat, L"v1.2.bmp"},
                                                 {L"b.jfif", kJpegFormat, L"b.jfif"}}) {
        const std::wstring folder = LR"(C:\a.png\)";
        EXPECT_EQ(WithExtensionOf(*SaverFormatAt(format), folder + name), folder + complete);
    }
    for (const auto& [picture, stem] : {std::pair{L"dir/絵 1.tar.gif", L"絵 1.tar"},
                                        {L"ab?.bmp", L"ab_"},
                                        {L"con.png", L"_con"},
                                        {L".png", L".png"},
                                        {L"... .png", L"無題"},
                                        {L"", L"無題"}}) {
        EXPECT_EQ(ProposedStem(picture), stem);
    }
    EXPECT_EQ(ProposedStem(L"scan.tif", 2), L"scan_2");
}

class SaveTest : public MainWindowTest {
  protected:
    void SetUp() override {
        Load();
        ShowPicture(20, 10);
        window_.SetPictureSource({L"夕.焼け.gif", L"x.spi"});
    }

    // Chooses a name as the user does; the dialog stays open where that is refused.
    void SaveAs(const std::wstring& name, int type) {
        name_ = folder_.Path() + name;
        type_ = type;
        Choose(menuFileSaveAs);
    }

    std::string Content(const std::wstring& name) const { return ContentOf(folder_.Path() + name); }
    // Which writer has made a file.
    std::string Mark(const std::wstring& name) const { return Content(name).substr(0, 2); }

    TemporaryFolder folder_;
    std::wstring name_;
    int type_ = 1;
    SaveDialogRequest asked_;
    bool accepted_ = false;
    SaveCommands save_{window_, [this](HWND, const SaveDialogRequest& request) {
                           asked_ = request;
                           accepted_ = request.accept(name_, type_);
                           return accepted_;
                       }};
};

TEST_F(SaveTest, ChoosesTheWriterAndRemembersTheChoice) {
    SaveAs(L"a.jpeg", 3);
    EXPECT_EQ(asked_.name, L"夕.焼け.png");
    EXPECT_EQ(asked_.types.size(), 3u);
    EXPECT_EQ(asked_.renamed(L"夕.焼け.png", 1), L"夕.焼け.bmp");
    EXPECT_EQ(Mark(L"a.jpeg"), "\xFF\xD8");
    SaveAs(L"b", 2);
    EXPECT_EQ(asked_.name, L"夕.焼け.jpg");
    EXPECT_EQ(AddBackslash(asked_.folder), folder_.Path());
    EXPECT_EQ(Mark(L"b.png"), "\x89P");
    SaveAs(L"c", 1);
    EXPECT_EQ(Content(L"c.bmp").size(), 54u + 60u * 10u);
    EXPECT_TRUE(messages_.All().empty());
}

TEST_F(SaveTest, BeginsBesideThePictureAndTakesTheTypedExtension) {
    const RecordedMessages yes(IDYES);
    window_.SetPictureSource({L"夕.jpeg", L"x.spi", folder_.Write(L"夕.jpg", "original")});
    Values().general.savePath = LR"(C:\windows)";
    Values().saveOptions.jpeg.quality = 70;
    SaveAs(L"夕.jpg", 2);
    EXPECT_EQ(AddBackslash(asked_.folder), folder_.Path());
    EXPECT_EQ(asked_.name, L"夕.jpg");
    EXPECT_EQ(asked_.type, 3);
    EXPECT_EQ(Mark(L"夕.jpg"), "\xFF\xD8");
    EXPECT_TRUE(Has(yes.Only(), L"品質 70 で圧縮し直す")) << "over its original";
    // From then on with what was chosen last.
    window_.SetPictureSource({L"b.bmp", {}, LR"(C:\windows\b.bmp)"});
    SaveAs(L"c.bmp", 2);
    EXPECT_EQ(AddBackslash(asked_.folder), folder_.Path());
    EXPECT_EQ(asked_.type, 3);
    EXPECT_EQ(Mark(L"c.bmp"), "BM");
}

TEST_F(SaveTest, AsksBeforeItReplacesAndTellsWhatFails) {
    const std::wstring mine = folder_.Write(L"a.jpg", "mine");
    SaveAs(L"a.jpg", 3);  // the answer is OK, which is not yes
    EXPECT_FALSE(accepted_);
    EXPECT_EQ(Content(L"a.jpg"), "mine");
    EXPECT_EQ(messages_.Only(), mine + L" は既に存在します。\r\n上書きしますか？");

    const RecordedMessages yes(IDYES);
    SaveAs(L"a.jpg", 3);
    EXPECT_EQ(Mark(L"a.jpg"), "\xFF\xD8");
    SaveAs(L"none\\b.png", 2);
    const std::wstring locked = folder_.Write(L"c.bmp", "mine");
    SetFileAttributesW(locked.c_str(), FILE_ATTRIBUTE_READONLY);
    SaveAs(L"c", 1);
    EXPECT_EQ(Content(L"c.bmp"), "mine");
    ASSERT_EQ(yes.All().size(), 4u);
    EXPECT_TRUE(Has(yes.All()[1].text, L"b.png に保存できません。\r\nフォルダが見つかりません。"));
    EXPECT_EQ(yes.All()[3].text, L"ファイル " + locked +
                                     L" に保存できません。\r\n"
                                     L"書き込む権限がないか、読み取り専用です。");
}

// Also when it is saved over that file, which is then another one than was read.
TEST_F(SaveTest, KeepsTheColorsAndTheDateOfTheFile) {
    const RecordedMessages yes(IDYES);
    const std::wstring path = folder_.Write(L"photo.jpg", "photo");
    std::filesystem::last_write_time(
        path, std::filesystem::file_time_type::clock::now() - std::chrono::hours(9'000));
    const uint64_t taken = StampOf(path)->changed;
    const auto changed = [&](const wchar_t* name) {
        return StampOf(folder_.Path() + name)->changed / 10'000;
    };
    Picture picture = CurrentPicture().Another();
    picture.SetOrigin(std::make_shared<PictureOrigin>(
        PictureOrigin{.path = path, .stamp = *ExactStampOf(path), .plugin = L"x.spi"}));
    picture.SetProfile(color::Profile::AdobeRgb().Icc());
    SetCurrentPicture(std::move(picture));
    window_.SetPictureSource({L"photo.jpg", L"x.spi", path});
    SaveAs(L"a.png", 2);
    EXPECT_NE(Content(L"a.png").find("iCCP"), std::string::npos);
    EXPECT_GT(changed(L"a.png"), taken / 10'000 + 3'600'000);
    Values().saveOptions.keepDates = 1;
    for (const wchar_t* const name : {L"a.png", L"b.bmp", L"photo.jpg", L"c.png"}) {
        SaveAs(name, 2);
        EXPECT_EQ(changed(name), taken / 10'000) << name;
    }
    EXPECT_NE(Content(L"photo.jpg").find("ICC_PROFILE"), std::string::npos);
    EXPECT_TRUE(Has(yes.All().back().text, L"画質が落ちます。")) << "nothing of it is lost";
}

TEST_F(SaveTest, LongSaveIsStoppedAndTheOldFileStays) {
    // Noise of few values takes seconds at this level, however many processors share it.
    constexpr int kSide = 4000;
    std::minstd_rand random;
    SetCurrentPicture(PictureOf(kSide, kSide, [&](std::span<uint8_t> rows) {
        std::ranges::generate(rows, [&] { return static_cast<uint8_t>(random() >> 16 & 7); });
    }));
    Values().saveOptions.png = {9, 0};
    window_.Show();
    SetActiveWindow(window_.Handle());
    folder_.Write(L"a.png", "mine");
    const RecordedMessages yes(IDYES);
    int looks = 0;
    Timer user([&] {
        const HWND progress = FindWindowW(nullptr, L"画像の保存");
        if (progress == nullptr) return;
        EXPECT_FALSE(IsWindowEnabled(GetWindow(progress, GW_OWNER)));
        EXPECT_TRUE(IsReadUnderWay());
        // What was typed for the window below; then he goes to the button and presses it.
        std::vector<int> keys{VK_RETURN, VK_SPACE, VK_DOWN, VK_RETURN, VK_LEFT, VK_SPACE};
        if (++looks > 4) keys = {looks == 5 ? VK_TAB : VK_RETURN};
        for (const int key : keys) {
            PostMessageW(GetFocus(), WM_KEYDOWN, static_cast<WPARAM>(key), 0);
            PostMessageW(GetFocus(), WM_KEYUP, static_cast<WPARAM>(key), 0);
        }
    });
    user.Start(30);
    SaveAs(L"a", 2);
    user.Stop();
    EXPECT_GE(looks, 6);
    EXPECT_EQ(Content(L"a.png"), "mine");
    ASSERT_EQ(yes.All().size(), 2U);
    EXPECT_TRUE(Has(yes.All()[1].text, L"の保存を中止しました"));
    EXPECT_EQ(FindWindowW(nullptr, L"画像の保存"), nullptr);
    EXPECT_EQ(GetActiveWindow(), window_.Handle());

    // Who closes the program meanwhile still gets his picture.
    PostMessageW(window_.Handle(), WM_CLOSE, 0, 0);
    Values().saveOptions.png = {1, 0};
    SaveAs(L"b", 2);
    DoEvents();
    EXPECT_GT(Content(L"b.png").size(), 1000U);
    EXPECT_EQ(window_.Handle(), nullptr);
}

class TurnFileTest : public MainWindowTest {
  protected:
    void SetUp() override { Load(); }

    // Shows a picture and has the file be of it.
    void ShowFile(int width, int height) {
        saving::SaveOptions options{};
        options.jpeg.quality = 100;
        options.jpeg.optimizedHuffman = 1;  // as turned files are
        ASSERT_TRUE(SavePictureFile(TestPicture(width, height), path_, options, 0));
        ShowPicture(width, height);
        window_.SetPictureSource({L"a.jpg", L"iftessjpeg.spi", path_});
        before_ = ContentOf(path_);
    }
    bool IsChanged() const { return ContentOf(path_) != before_; }
    bool IsPossible() { return window_.Commands().IsEnabled(commandTurnFile); }

    TemporaryFolder folder_;
    std::wstring path_ = folder_.Path() + L"a.jpg";
    std::string before_;
    TurnFileCommand turn_{window_, FinishedFolder() + kHostProgram};
};

TEST_F(TurnFileTest, WritesWhatIsSeenWhereThatIsTheFiles) {
    ShowFile(32, 16);
    EXPECT_FALSE(IsPossible());
    for (int i = 0; i < 4; ++i) {
        EXPECT_EQ(IsPossible(), i != 0);
        Choose(commandTurnRight);
    }
    EXPECT_FALSE(IsPossible());
    for (int i = 0; i < 4; ++i) {
        Choose(commandTurnLeft);
        Choose(commandTurnFile);
        EXPECT_EQ(window_.Orientation(), exif::kUpright);
        EXPECT_EQ(IsChanged(), i != 3) << "a whole round";
    }
    EXPECT_TRUE(messages_.All().empty());
    Choose(commandMirror);
    for (const PictureSource& other : {PictureSource{L"a.jpg", {}, folder_.Path() + L"a.zip"},
                                       {L"a.gif", {}, folder_.Path() + L"a.gif"},
                                       {L"クリップボード", {}}}) {
        window_.SetPictureSource(other);
        EXPECT_FALSE(IsPossible()) << other.path;
    }
}

TEST_F(TurnFileTest, AsksBeforeEdgesGoAndTellsWhatFails) {
    ShowFile(20, 10);
    Choose(commandTurnRight);
    Choose(commandTurnFile);  // the answer is OK, which is neither
    EXPECT_TRUE(Has(messages_.Only(), L"左端の 2 ピクセルが失われます"));
    EXPECT_FALSE(IsChanged());
    const RecordedMessages yes(IDYES);
    Choose(commandTurnFile);
    EXPECT_TRUE(IsChanged());
    ShowFile(32, 16);
    Choose(commandTurnLeft);
    folder_.Write(L"a.jpg", "another");
    Choose(commandTurnFile);
    EXPECT_EQ(ContentOf(path_), "another");
    EXPECT_TRUE(Has(yes.All().back().text, L"表示した後で、ファイルが変更または削除されています"));
}

class DragOutTest : public TurnFileTest {
  protected:
    // Drags the picture to the right.
    void Drag(int x = 100) {
        SendToView(WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(x, 100));
        SendToView(WM_MOUSEMOVE, MK_LBUTTON, MAKELPARAM(x + 50, 100));
        SendToView(WM_LBUTTONUP, 0, MAKELPARAM(x + 50, 100));
    }
    // What somebody is given who takes what was dragged.
    std::wstring Dropped() {
        IDataObject* const data = MakeFileData(std::exchange(dragged_, {}));
        FORMATETC format{CF_HDROP, nullptr, DVASPECT_CONTENT, -1, TYMED_HGLOBAL};
        EXPECT_EQ(data->QueryGetData(&format), S_OK);
        STGMEDIUM medium{};
        std::wstring path;
        for (int i = 0; i < 2 && SUCCEEDED(data->GetData(&format, &medium)); ++i) {
            path = PathsIn(static_cast<HDROP>(medium.hGlobal)).at(0);
            ReleaseStgMedium(&medium);
        }
        data->Release();
        return path;
    }

    DraggedFile dragged_;
    bool wasBusy_ = false;
    DragOut dragOut_{window_, controlBar_, [this](DraggedFile file) {
                         dragged_ = std::move(file);
                         wasBusy_ = IsReadUnderWay();
                         return DWORD{DROPEFFECT_COPY};
                     }};
};

TEST_F(DragOutTest, GivesTheFileOrOneThatIsMadeOnDemand) {
    ShowFile(128, 96);
    Drag(2);
    EXPECT_FALSE(dragged_) << "beside the picture";
    Drag();
    ASSERT_TRUE(dragged_);
    EXPECT_TRUE(wasBusy_);
    EXPECT_EQ(Dropped(), path_);
    Choose(commandMirror);
    Drag();
    ASSERT_TRUE(dragged_);
    window_.ClearPicture();  // what is dragged is what was seen
    const std::wstring made = Dropped();
    EXPECT_EQ(FileNameOf(made), L"a.png");
    EXPECT_EQ(ContentOf(made).substr(1, 3), "PNG");
    EXPECT_FALSE(IsReadUnderWay());
}

TEST_F(DragOutTest, APictureThatFollowsThePointerIsDraggedWithCtrl) {
    ShowFile(512, 400);
    Values().fixSizeValue = 0;
    window_.FollowSizeMode();
    ASSERT_TRUE(window_.Stage().Seen().CanScroll());
    Drag();
    EXPECT_FALSE(dragged_);
    BYTE former[256];
    GetKeyboardState(former);
    BYTE keys[256]{};
    keys[VK_CONTROL] = 0x80;
    SetKeyboardState(keys);
    SendToView(WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(150, 20));
    SendToView(WM_MOUSEMOVE, MK_LBUTTON, MAKELPARAM(150, 30));
    SetKeyboardState(former);
    EXPECT_TRUE(dragged_);
}

}  // namespace
}  // namespace tessary::test
