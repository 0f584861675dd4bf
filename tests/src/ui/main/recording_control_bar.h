// A control bar that remembers what the main window asks of it, and answers what the test says.
#pragma once

#include <functional>
#include <span>
#include <string>
#include <vector>

#include "ui/main/control_bar.h"

namespace tessary::test {

class RecordingControlBar final : public ControlBar {
  public:
    bool SetFileList(std::span<const std::wstring> list) override {
        lists.emplace_back(list.begin(), list.end());
        if (onSetFileList) onSetFileList();
        return !list.empty();
    }
    bool OpenFiles(std::vector<ListedFile> files, ListSource from) override {
        source = from;
        std::vector<std::wstring> paths;
        for (const ListedFile& file : files)
            paths.push_back(file.path);
        return SetFileList(paths);
    }
    std::wstring Failure() const override { return failure; }
    void ClearLists() override {}
    std::vector<std::wstring> FileList() const override { return files; }
    bool HasFiles() const override { return !files.empty(); }
    void PictureReplaced(const std::wstring& text) override { info = text; }
    void FileSaved(const std::wstring&) override {}
    void Press(BarButton button) override { pressed.push_back(static_cast<int>(button)); }
    bool IsPlaying() const override { return playing; }
    void WishCommand(int command) override { wishes.push_back(command); }
    Urge UrgeForElse() const override { return urge; }
    bool IsVisible() const override { return visible; }
    void SetVisible(bool show) override { visible = show; }
    void TakeFocus(BarFocus) override {}
    bool MayClose() override { return true; }
    void SavePlace() override {}
    void Unload() override { ++unloads; }

    // What it was asked.
    std::vector<std::vector<std::wstring>> lists;
    ListSource source = ListSource::kFiles;
    std::vector<int> pressed;
    std::vector<int> wishes;
    std::wstring info = L"a file";
    int unloads = 0;

    // What it answers and does.
    std::vector<std::wstring> files;
    std::wstring failure;
    bool playing = false;
    Urge urge = Urge::kNone;
    bool visible = false;
    std::function<void()> onSetFileList;
};

}  // namespace tessary::test
