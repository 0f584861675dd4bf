#include "app/base/fetch_file.h"

#include <windows.h>

#include <atomic>
#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

#include "app/base/distant_file.h"
#include "app/base/handles.h"
#include "app/base/paths.h"
#include "app/base/worker_thread.h"

namespace tessary {
namespace {

constexpr size_t kPieceSize = 256u << 10;
constexpr DWORD kAskAgainMilliseconds = 20;

// How often a system call that may just be beginning is broken off, and how long each time counts.
constexpr int kCancelTries = 5;
constexpr DWORD kCancelMilliseconds = 10;

// What the thread works with; it may outlive the one who waits for it.
class Fetching {
  public:
    explicit Fetching(const std::wstring& path)
        : path_(path), fetchPiece_(CurrentDistantFiles().fetchPiece) {}

    // Until Stop.
    void Run() {
        std::vector<uint8_t> piece(kPieceSize);
        error_ = ReadAll(piece);
    }
    void Stop() { stop_ = true; }

    int Done() const { return done_; }    // in pieces
    int Total() const { return total_; }  // 0: unknown
    DWORD Error() const { return error_; }

  private:
    DWORD ReadAll(std::vector<uint8_t>& piece) {
        const UniqueFile file(CreateFileW(ExtendedPath(path_).c_str(), GENERIC_READ,
                                          FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                                          nullptr, OPEN_EXISTING, FILE_FLAG_SEQUENTIAL_SCAN,
                                          nullptr));
        LARGE_INTEGER size{};
        if (!file) return GetLastError();
        if (GetFileSizeEx(file.Get(), &size)) {
            total_ = static_cast<int>(size.QuadPart / static_cast<LONGLONG>(kPieceSize));
        }
        for (; !stop_; ++done_) {
            if (fetchPiece_) {
                if (const DWORD error = fetchPiece_(path_)) return error;
            }
            DWORD read = 0;
            if (!ReadFile(file.Get(), piece.data(), static_cast<DWORD>(piece.size()), &read,
                          nullptr)) {
                return GetLastError();
            }
            if (read == 0) return ERROR_SUCCESS;
        }
        return ERROR_OPERATION_ABORTED;
    }

    const std::wstring path_;
    const std::function<unsigned long(const std::wstring&)> fetchPiece_;
    std::atomic<bool> stop_ = false;
    std::atomic<int> done_ = 0;
    std::atomic<int> total_ = 0;
    std::atomic<DWORD> error_ = ERROR_NOT_ENOUGH_MEMORY;
};

// The thread, for as long as somebody waits for it.
class FetchThread {
  public:
    explicit FetchThread(const std::wstring& path)
        : fetching_(std::make_shared<Fetching>(path)),
          worker_([fetching = fetching_] { fetching->Run(); }) {}
    FetchThread(const FetchThread&) = delete;
    FetchThread& operator=(const FetchThread&) = delete;
    // A call that is broken off before it has begun is not broken off at all.
    ~FetchThread() {
        fetching_->Stop();
        for (int i = 0; i < kCancelTries && !worker_.HasEnded(); ++i) {
            worker_.CancelCall();
            if (worker_.HasEndedWithin(kCancelMilliseconds)) break;
        }
    }

    const Fetching& State() const { return *fetching_; }
    bool HasEndedWithin(DWORD milliseconds) const { return worker_.HasEndedWithin(milliseconds); }

  private:
    std::shared_ptr<Fetching> fetching_;
    Worker worker_;
};

// The system's numbers; not every header has the names.
struct ErrorMeaning {
    DWORD first;
    DWORD last;
    const wchar_t* text;
};

constexpr wchar_t kUnsuccessful[] = L"クラウドから取得できませんでした";
constexpr wchar_t kBroken[] = L"クラウドのファイルの管理情報が壊れています";
constexpr wchar_t kVirtual[] = L"ファイルの提供元のプログラムが応答しません";
constexpr wchar_t kAborted[] = L"クラウドからの取得が中断されました";
constexpr wchar_t kStorage[] = L"ファイルは別の記憶装置に移されていて、今は読み取れません";

constexpr ErrorMeaning kMeanings[] = {
    {358, 358, kBroken},
    {362, 362, L"クラウドのプログラム（OneDrive など）が動作していません"},
    {363, 363, kBroken},
    {364, 365, kUnsuccessful},
    {366, 366, kBroken},
    {369, 369, kVirtual},
    {370, 370, kBroken},
    {371, 372, kVirtual},
    {374, 383, kUnsuccessful},
    {385, 385, kVirtual},
    {386, 386, L"クラウドにサインインしていないため、取得できません"},
    {387, 387, L"クラウドのプログラムの容量またはメモリが不足しています"},
    {388, 388, L"ネットワークに接続できないため、クラウドから取得できません"},
    {389, 390, kUnsuccessful},
    {391, 391, L"クラウドのファイルは、ほかのアプリケーションで使用中です"},
    {392, 392, kUnsuccessful},
    {393, 393, kAborted},
    {394, 394, kBroken},
    {395, 395, L"クラウドのファイルへのアクセスが拒否されました"},
    {396, 397, kUnsuccessful},
    {398, 398, kAborted},
    {404, 404, L"クラウドのプログラム（OneDrive など）が終了しました"},
    {405, 405, kUnsuccessful},
    {426, 426, L"クラウドからの応答がありません"},
    {4350, 4352, kStorage},
};

const wchar_t* MeaningOf(DWORD error) {
    for (const ErrorMeaning& each : kMeanings) {
        if (error >= each.first && error <= each.last) return each.text;
    }
    return nullptr;
}

}  // namespace

std::optional<unsigned long> FetchFile(const std::wstring& path,
                                       const std::function<bool(int done, int total)>& goesOn) {
    const FetchThread thread(path);
    while (!thread.HasEndedWithin(kAskAgainMilliseconds)) {
        if (!goesOn(thread.State().Done(), thread.State().Total())) return std::nullopt;
    }
    return thread.State().Error();
}

bool IsFetchError(unsigned long error) {
    return MeaningOf(error) != nullptr;
}

std::wstring FetchErrorText(unsigned long error) {
    const wchar_t* const meaning = MeaningOf(error);
    return std::wstring(meaning == nullptr ? kUnsuccessful : meaning) + L"（エラー " +
           std::to_wstring(error) + L"）。";
}

}  // namespace tessary
