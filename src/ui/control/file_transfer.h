// Moving and copying files of the user's to a folder, and what he is asked on the way.
#pragma once

#include <windows.h>

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "convert/convert_monitor.h"
#include "files/at_target.h"
#include "files/file_step.h"
#include "files/move_file.h"

namespace tessary {

// A file, and the name that it gets.
struct TransferredFile {
    std::wstring path;  // full
    std::wstring name;
    std::wstring from{};  // what it is called to the user; empty: the path
};

// What is wrong with a folder as a target, as a text; empty when nothing is. Blocks.
std::wstring TargetFolderProblem(const std::wstring& folder);

// One transfer of as many files as it may be. No file is lost: what is in the way goes into the
// recycle bin or is replaced for good as the user says, and only when the newcomer is complete.
class FileTransfer {
  public:
    // Told what is at hand, and how much of how much is done; false stops.
    using News = std::function<bool(const std::wstring& path, int32_t done, int32_t total)>;
    // The window that questions are shown above, at that time.
    using Owner = std::function<HWND()>;

    // `folder`: full, with or without a separator at its end.
    FileTransfer(bool moves, const std::wstring& folder, Owner owner);

    // Transfers them one after the other, on a thread while messages are handled. What fails does
    // not keep the rest.
    void Run(const std::vector<TransferredFile>& files, const News& tell);

    // What was done, in that order.
    const std::vector<FileStep>& Done() const { return done_; }
    // A line about it; and what a message has to tell: empty when all went well.
    std::wstring Note() const;
    std::wstring Problems() const;
    bool HasFailures() const { return !failures_.empty(); }

  private:
    struct Way {
        std::wstring target;
        InTheWay inTheWay = InTheWay::kStays;
    };
    struct Outcome {
        DWORD error = ERROR_SUCCESS;
        FileStep step{};
    };

    void Transfer(const TransferredFile& file, const News& tell);
    std::optional<Way> WayFor(const TransferredFile& file);
    std::optional<Way> WayAround(const TransferredFile& file, const std::wstring& target,
                                 bool isFolder);
    bool MayReplace(const std::wstring& target) const;
    ConflictAnswer Ask(const TransferredFile& file, const std::wstring& target, bool mayReplace);
    std::optional<Outcome> Do(const TransferredFile& file, const Way& way, const News& tell);
    void Fail(const TransferredFile& file, DWORD error);
    std::wstring What() const { return moves_ ? L"移動" : L"コピー"; }

    bool moves_;
    std::wstring folder_;  // with a separator at its end
    Owner owner_;
    std::vector<TransferredFile> files_;
    size_t at_ = 0;  // the one at hand
    std::optional<ConflictAnswer> forAll_;
    std::vector<FileStep> done_;
    std::vector<std::wstring> failures_;  // a line each
    int itself_ = 0;                      // lie there already
    int same_ = 0;                        // have their like there
    int skipped_ = 0;
    bool isStopped_ = false;
};

}  // namespace tessary
