// What the tests of the conversion engine share: folders, test plug-ins, and a monitor that
// remembers what it was told.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "app/base/paths.h"
#include "app/settings/modValue.h"
#include "convert/modConvertFiles.h"
#include "plugin/modSusie.h"
#include "tests/plugins/test_plugins.h"
#include "tests/support/bitmap_image.h"
#include "tests/support/content_of.h"
#include "tests/support/helper_libraries.h"
#include "tests/support/redirected_settings.h"
#include "tests/support/temporary_folder.h"

namespace tessary::test {

class FakeMonitor : public ConvertMonitor {
  public:
    std::vector<ConvertSource> ConvertFileList() override { return {files.begin(), files.end()}; }
    size_t LogLineCount() override { return lines.size(); }
    void RemoveFirstLogLine() override { lines.erase(lines.begin()); }
    void AddLogLine(const std::wstring& line) override {
        lines.push_back(line);
        if (onLine) onLine(line);
    }
    void Breathe() override {}
    bool SetProgressBar(int32_t totalPosition, int32_t totalMaximum, int32_t filePosition,
                        int32_t fileMaximum) override {
        if (totalMaximum < 0) {
            if (fileMaximum == 100) percents.push_back(filePosition);
            return stepsLeft != 0;
        }
        steps += std::to_wstring(totalPosition) + L'/' + std::to_wstring(totalMaximum) + L':' +
                 std::to_wstring(filePosition) + L'/' + std::to_wstring(fileMaximum) + L' ';
        if (stepsLeft > 0) --stepsLeft;
        return stepsLeft != 0;
    }
    ConflictAnswer AskConflict(const ConflictQuestion&) override { return answer; }
    void FileDone(const FileReport& report) override {
        counts.Count(report);
        reports.push_back(report);
    }

    std::vector<std::wstring> files;
    std::vector<std::wstring> lines;
    std::function<void(const std::wstring&)> onLine;
    std::wstring steps;  // what SetProgressBar was told about the whole run
    int stepsLeft = -1;  // from the step on that brings this to 0 a stop is asked for
    std::vector<int32_t> percents;
    OutcomeCounts counts;
    std::vector<FileReport> reports;
    ConflictAnswer answer = ConflictAnswer::kSkip;
};

// The files below a folder, with their contents.
using Files = std::map<std::wstring, std::string>;

inline Files FilesBelow(const std::wstring& folder) {
    Files files;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
        const std::wstring path = entry.path().wstring();
        if (entry.is_regular_file()) files[path.substr(folder.size())] = ContentOf(path);
    }
    return files;
}

// With a blank behind each.
inline std::wstring NamesOf(const Files& files) {
    std::wstring names;
    for (const auto& [name, content] : files)
        names += name + L' ';
    return names;
}

class ConvertTest : public testing::Test {
  protected:
    ConvertTest() {
        LoadHelperLibraries();
        for (const wchar_t* name : {L"iftst.spi", L"axtsa.spi"})
            std::filesystem::copy_file(TestPluginPath(name), plugins_.Path() + name);
        Values().general.useSPI = 1;
        Values().general.spiFolder[0] = plugins_.Path();
        Values().general.loadSPI[0] = true;
        LoadSPI();
    }
    ~ConvertTest() override { UnloadSPI(); }

    void Add(const std::wstring& name, const std::string& content) {
        monitor_.files.push_back(source_.Write(name, content));
    }
    // A run over the list, into a target folder that may be emptied before.
    ConvertEnd Run() { return ConvertFiles(Target(), monitor_); }
    ConvertEnd RunAnew() {
        std::filesystem::remove_all(Target());
        monitor_.reports.clear();
        monitor_.lines.clear();
        return Run();
    }
    std::wstring Target() const { return target_.Path() + L"out\\"; }
    std::wstring Converted() const { return NamesOf(FilesBelow(Target())); }
    bool LogHolds(const std::wstring& line) const {
        return std::ranges::count(monitor_.lines, line) != 0;
    }
    // How many of the reports have a value somewhere.
    template <typename Value>
    ptrdiff_t CountOf(Value FileReport::*part, Value value) const {
        return std::ranges::count(monitor_.reports, value, part);
    }

    RedirectedSettings store_;
    ConvertSettings& settings_ = Values().convert;
    TemporaryFolder plugins_;
    TemporaryFolder source_;
    TemporaryFolder target_;
    FakeMonitor monitor_;
};

}  // namespace tessary::test
