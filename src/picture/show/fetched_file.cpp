#include "picture/show/fetched_file.h"

#include <windows.h>

#include "app/base/distant_file.h"
#include "app/base/fetch_file.h"
#include "picture/read/no_picture.h"
#include "picture/read/source_file.h"

namespace tessary {
namespace {

constexpr DWORD kSettleMilliseconds = 200;
constexpr DWORD kBreathMilliseconds = 10;

constexpr wchar_t kNoPictureText[] =
    L"クラウドにあり、名前からは画像ではないため、取得していません。";

}  // namespace

FetchEnd FetchToShow(const std::wstring& path, PictureView& view, std::wstring& failure) {
    if (!IsNotOnThisDisk(path)) return FetchEnd::kIsHere;
    if (LookAtName(path).kind == kFileUnknown && IsNoPicture(path)) {
        failure = kNoPictureText;
        return FetchEnd::kFailed;
    }
    FetchEnd end = FetchEnd::kIsHere;
    const auto goesOn = [&](int done, int total) {
        if (!view.AwaitsFile()) {
            end = FetchEnd::kPassedBy;
            return false;
        }
        view.TellFetching(done, total);
        if (!view.Breathe()) end = FetchEnd::kStopped;
        return end == FetchEnd::kIsHere;
    };
    const DWORD start = GetTickCount();
    while (GetTickCount() - start < kSettleMilliseconds) {
        if (!goesOn(0, 0)) return end;
        Sleep(kBreathMilliseconds);
    }
    const auto error = FetchFile(path, goesOn);
    if (!error || *error == ERROR_SUCCESS) return end;
    failure = FetchErrorText(*error);
    return FetchEnd::kFailed;
}

}  // namespace tessary
