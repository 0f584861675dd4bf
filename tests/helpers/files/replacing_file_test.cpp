// Replacing files where systems and file systems answer as others than the one of the tests do.
#include "helpers/files/replacing_file.h"

#include <gtest/gtest.h>

#include <map>

#include "helpers/files/refusal.h"
#include "tests/support/content_of.h"
#include "tests/support/temporary_folder.h"

namespace tessary::files::test {
namespace {

constexpr auto kRenameInfoEx = static_cast<FILE_INFO_BY_HANDLE_CLASS>(22);
constexpr DWORD kReplacePosix = 3;
constexpr std::string_view kOld = "old content";
constexpr uint64_t kChanged = 126'444'736'000'000'000;

// Answers as told, and as the system does otherwise.
struct PlayedCalls final : FileCalls {
    HANDLE Create(const std::wstring& name, DWORD access, DWORD sharing, DWORD creation,
                  DWORD flags) override {
        const auto error = creation == CREATE_NEW ? creationError : openingErrors[access];
        if (error == 0) return FileCalls::Create(name, access, sharing, creation, flags);
        SetLastError(error);
        return INVALID_HANDLE_VALUE;
    }
    bool WasDeletePending() override { return isDeletePending; }
    bool SetInformation(HANDLE file, FILE_INFO_BY_HANDLE_CLASS kind, void* information,
                        DWORD size) override {
        if (kind == FileDispositionInfo) {
            ++marks;
            if (keepsMark && *static_cast<const BOOLEAN*>(information) == 0) return true;
        } else {
            renames.push_back(kind);
        }
        if (const DWORD error = refused[kind]) {
            SetLastError(error);
            return false;
        }
        // The system of the tests does not know it.
        if (kind != kRenameInfoEx) return FileCalls::SetInformation(file, kind, information, size);
        EXPECT_EQ(*static_cast<const DWORD*>(information), kReplacePosix);
        return FileCalls::SetInformation(file, FileRenameInfo, information, size);
    }
    bool Move(const std::wstring& name, const std::wstring& newName, DWORD flags) override {
        ++movesByName;
        return FileCalls::Move(name, newName, flags);
    }
    DWORD Attributes(const std::wstring& name) override {
        if (!loses || !name.ends_with(L"target")) return FileCalls::Attributes(name);
        SetLastError(ERROR_FILE_NOT_FOUND);
        return INVALID_FILE_ATTRIBUTES;
    }
    bool IsRemote(const std::wstring&) override { return isRemote; }
    void Pause(DWORD milliseconds) override {
        waited += milliseconds;
        if (waited >= heldFor) holder.Reset();
    }

    DWORD creationError = 0;
    std::map<DWORD, DWORD> openingErrors;  // by the access that is wanted
    std::map<FILE_INFO_BY_HANDLE_CLASS, DWORD> refused;
    bool isDeletePending = false;
    bool keepsMark = false;
    bool loses = false;
    bool isRemote = false;
    UniqueFile holder;  // of the target, closed after a while
    DWORD heldFor = MAXDWORD;

    DWORD waited = 0;
    int marks = 0;
    int movesByName = 0;
    std::vector<FILE_INFO_BY_HANDLE_CLASS> renames;
};

class ReplacingFiles : public testing::Test {
  protected:
    // The error, 0 for none; `inPieces`: of all sizes, and more than the buffer holds.
    DWORD Replace(const GoesOn& goesOn = {}, bool inPieces = false) {
        ReplacingFile file(target_, Links::kReplace, calls_);
        EXPECT_TRUE(file.IsOpen());
        file.SetDates({.changed = kChanged});
        std::vector<size_t> sizes = {11};
        if (inPieces) sizes = {100, 0, 262000, 144, 1, 131072, 131073, 300000, 262144, 5};
        new_.clear();
        for (const size_t size : sizes) {
            const std::vector<uint8_t> piece(size, static_cast<uint8_t>(new_.size() % 251));
            new_.append(piece.begin(), piece.end());
            if (!file.Write(piece)) return file.Error();
        }
        return file.Commit(Durability::kDisk, goesOn) ? 0 : file.Error();
    }
    void ExpectReplaced(bool inPieces = false) {
        EXPECT_EQ(Replace({}, inPieces), 0u);
        ExpectOnly(new_);
        WIN32_FILE_ATTRIBUTE_DATA data{};
        GetFileAttributesExW(target_.c_str(), GetFileExInfoStandard, &data);
        EXPECT_EQ(uint64_t{data.ftLastWriteTime.dwHighDateTime} << 32 |
                      data.ftLastWriteTime.dwLowDateTime,
                  kChanged);
    }
    void Hold() {
        calls_.holder.Reset(CreateFileW(target_.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr,
                                        OPEN_EXISTING, 0, nullptr));
    }
    // The folder's only file is the target with that content at its end.
    void ExpectOnly(std::string_view content) const {
        int files = 0;
        for (const auto& entry : std::filesystem::directory_iterator(folder_.Path())) {
            ++files;
            const std::string bytes = tessary::test::ContentOf(entry.path());
            EXPECT_TRUE(bytes == content) << entry.path() << ' ' << bytes.size();
        }
        EXPECT_EQ(files, content.empty() ? 0 : 1);
    }

    tessary::test::TemporaryFolder folder_;
    std::wstring target_ = folder_.Path() + L"target";
    std::string new_;
    PlayedCalls calls_;
};

TEST_F(ReplacingFiles, RenameInTheBestWayThatIsKnown) {
    using Kinds = std::vector<FILE_INFO_BY_HANDLE_CLASS>;
    folder_.Write(L"target", kOld);
    ExpectReplaced();
    // The first try finds that there is a file.
    EXPECT_EQ(calls_.renames, (Kinds{FileRenameInfo, kRenameInfoEx}));
    for (const DWORD unknown : {ERROR_INVALID_PARAMETER, ERROR_NOT_SUPPORTED,
                                ERROR_INVALID_FUNCTION, ERROR_ACCESS_DENIED}) {
        folder_.Write(L"target", kOld);
        calls_.refused = {{kRenameInfoEx, unknown}};
        ExpectReplaced();
    }
    calls_.refused[FileRenameInfo] = ERROR_INVALID_FUNCTION;
    for (const bool inPieces : {false, true}) {
        folder_.Write(L"target", kOld);
        calls_.movesByName = 0;
        ExpectReplaced(inPieces);
        EXPECT_GT(calls_.movesByName, 0);
        DeleteFileW(target_.c_str());
        ExpectReplaced(inPieces);  // where there is none
    }
}

TEST_F(ReplacingFiles, WaitForWhoeverHasTheTargetOpen) {
    folder_.Write(L"target", kOld);
    Hold();
    EXPECT_EQ(Replace(), DWORD{ERROR_SHARING_VIOLATION});
    EXPECT_GE(calls_.waited, 2000u);
    EXPECT_LE(calls_.waited, 3000u);
    int asked = 0;
    EXPECT_EQ(Replace([&] { return ++asked < 5; }), DWORD{ERROR_CANCELLED});
    calls_.holder.Reset();
    ExpectOnly(kOld);
    Hold();
    calls_.waited = 0;
    calls_.heldFor = 1900;
    ExpectReplaced();
}

// What cannot be replaced for another reason is not waited for so long, and not said to be in use.
TEST_F(ReplacingFiles, TellUseFromRights) {
    folder_.Write(L"target", kOld);
    calls_.refused = {{kRenameInfoEx, ERROR_ACCESS_DENIED}, {FileRenameInfo, ERROR_ACCESS_DENIED}};
    EXPECT_EQ(Replace(), DWORD{ERROR_SHARING_VIOLATION}) << "whoever has it lets it be deleted";
    calls_.waited = 0;
    calls_.openingErrors = {{DELETE, ERROR_ACCESS_DENIED}};
    EXPECT_EQ(Replace(), DWORD{ERROR_ACCESS_DENIED});
    EXPECT_LE(calls_.waited, 600u);
    calls_.isDeletePending = true;
    EXPECT_EQ(Replace(), DWORD{ERROR_SHARING_VIOLATION});
    ExpectOnly(kOld);
}

// Shared folders of virtual machines, and of the web.
TEST_F(ReplacingFiles, LoseNothingWhereMarksStay) {
    calls_.keepsMark = true;
    for (const bool inPieces : {false, true}) {
        ExpectReplaced(inPieces);
        ExpectReplaced(inPieces);  // over what is there
        EXPECT_EQ(calls_.marks, 2) << "tried once, on an empty file";
        DeleteFileW(target_.c_str());
    }
    calls_.refused = {{kRenameInfoEx, ERROR_DISK_FULL}, {FileRenameInfo, ERROR_DISK_FULL}};
    EXPECT_EQ(Replace(), DWORD{ERROR_DISK_FULL});
    ExpectOnly({});
    // What is lost in spite of all is not said to be there.
    calls_.refused = {};
    calls_.isRemote = calls_.loses = true;
    EXPECT_EQ(Replace(), DWORD{ERROR_FILE_INVALID});
}

TEST_F(ReplacingFiles, TellOfProtectedFolders) {
    calls_.creationError = ERROR_FILE_NOT_FOUND;
    EXPECT_EQ(Replace(), kErrorProtectedFolder);
    EXPECT_EQ(Replace({}, true), kErrorProtectedFolder);
    calls_.creationError = ERROR_ACCESS_DENIED;
    EXPECT_EQ(Replace(), kErrorProtectedFolder) << "new files are allowed there";
    calls_.isRemote = true;
    EXPECT_EQ(Replace(), DWORD{ERROR_ACCESS_DENIED}) << "or may not be";
    calls_.isRemote = false;
    calls_.openingErrors = {{FILE_ADD_FILE, ERROR_ACCESS_DENIED}};
    EXPECT_EQ(Replace(), DWORD{ERROR_ACCESS_DENIED});
    calls_.creationError = ERROR_DISK_FULL;
    EXPECT_EQ(Replace(), DWORD{ERROR_DISK_FULL});
    ExpectOnly({});
    EXPECT_EQ(TellingError(ERROR_FILE_NOT_FOUND, LR"(\\?\)" + folder_.Path() + L"none\\a"),
              DWORD{ERROR_FILE_NOT_FOUND});
}

}  // namespace
}  // namespace tessary::files::test
