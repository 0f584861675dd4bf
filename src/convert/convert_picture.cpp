// Converting one picture.
#include "app/base/error.h"
#include "app/base/paths.h"
#include "app/base/text.h"
#include "app/settings/modValue.h"
#include "convert/convert_progress.h"
#include "convert/convert_run.h"
#include "convert/decode_filter.h"
#include "convert/side_job.h"
#include "picture/save/save_picture.h"

namespace tessary {
namespace {

constexpr uint16_t kFewColorsDepth = 8;  // and below

constexpr INT_PTR kMostMeanwhile = 1 << 20;  // bytes of a picture that is saved in a moment

std::wstring WithoutExtension(const std::wstring& name) {
    return name.substr(0, name.rfind(L'.'));
}

// Of the format that the user wants for pictures of that many bits per pixel; empty for a setting
// that names none.
const wchar_t* ExtensionFor(uint16_t bitsPerPixel) {
    const ConvertSettings& settings = Values().convert;
    switch (bitsPerPixel > kFewColorsDepth ? settings.saveType2 : settings.saveType1) {
        case 0:
            return L".bmp";
        case 1:
            return L".png";
        case 2:
            return L".jpg";
        default:
            return L"";
    }
}

std::wstring SizeText(int32_t width, int32_t height) {
    return std::to_wstring(width) + L" \u00D7 " + std::to_wstring(height);
}

}  // namespace

StepResult ConvertRun::ConvertBitmapFile(const std::wstring& path,
                                         const std::wstring& outputFolder) {
    return Step([&](StepResult& result) {
        log_.WriteConvertLog(L"ファイル種別", L"ビットマップファイル", 2);
        if (!source_.picture) source_.picture = ReadBitmapSource(path, TellProgress);
        const OwnedPicture& picture = source_.picture->picture;
        if (!picture) {
            result = StepResult::kNotHandled;
            log_.WriteConvertLog(L"ビットマップの読み込みに失敗しました", {}, 2);
            Report(FileOutcome::kFailed, FileReason::kBrokenData);
            return;
        }
        log_.WriteConvertLog(L"ビットマップを読み込みました", {}, 2);
        result = SaveConvertedPicture(picture.Get(), outputFolder, path);
    });
}

StepResult ConvertRun::ConvertPictureFile(const std::wstring& path, const std::wstring& pluginKey,
                                          const std::wstring& outputFolder) {
    return Step([&](StepResult& result) {
        log_.WriteConvertLog(L"ファイル種別", L"画像ファイル", 2);
        log_.WriteConvertLog(L"使用プラグイン", FileNameOf(pluginKey), 2);
        if (!source_.picture) source_.picture = DecodeSource(path, pluginKey, TellProgress);
        const SourcePicture& source = *source_.picture;
        if (source.isRefused) {
            // A file that its plug-in suddenly refuses counts as done.
            Report(FileOutcome::kFailed, FileReason::kPluginFailed);
            return;
        }
        if (source.failure.result != 0) {
            result = StepResult::kNotHandled;
            log_.WriteConvertLog(L"展開に失敗しました", path, 2);
            log_.WriteConvertLog(L"詳細情報", {}, 4);
            WritePluginError(source.failure, 4);
            Report(FileOutcome::kFailed, ReasonOf(source.failure),
                   FailureText(source.failure, pluginKey));
            return;
        }
        log_.WriteConvertLog(L"画像を展開しました", path, 2);
        result = SaveConvertedPicture(source.picture.Get(), outputFolder, path);
    });
}

// A member that lies beside a file of its name is still saved under its own, as any file is, so
// that a run can be repeated; but for a picture of this run.
std::wstring ConvertRun::SavedNameFor(const std::wstring& path, const std::wstring& outputFolder,
                                      const std::wstring& extension) const {
    if (Entry().saveName.empty()) return WithoutExtension(FileNameOf(path)) + extension;
    const std::wstring base = WithoutExtension(Entry().saveName);
    std::wstring name = base + extension;
    for (int number = 2; savedFiles_.contains(ToUpper(outputFolder + name)); ++number) {
        name = base;
        name.append(L" (").append(std::to_wstring(number)).append(L")").append(extension);
    }
    return name;
}

DWORD ConvertRun::SaveAndRead(const PicturePair& picture, const std::wstring& output) {
    const auto save = [&]() -> DWORD {
        SetLastError(ERROR_SUCCESS);
        if (SavePictureFile(picture, output,
                            reinterpret_cast<LONG_PTR>(&ConvertProgressCallback))) {
            return ERROR_SUCCESS;
        }
        const DWORD error = GetLastError();
        return error == ERROR_SUCCESS ? DWORD{ERROR_INVALID_FUNCTION} : error;
    };
    const bool isSmall =
        LocalHandleSize(picture.info) + LocalHandleSize(picture.bits) <= kMostMeanwhile;
    const auto next = Trapped(std::optional<std::wstring>(),
                              [&] { return isSmall ? NextToRead(output) : std::nullopt; });
    if (!next) return save();
    DWORD error = ERROR_INVALID_FUNCTION;
    {
        const SideJob saving([&] { error = save(); });
        ahead_.Read(*next);
    }
    if (error == ERROR_SUCCESS) TellProgress(1, 1);
    return error;
}

std::optional<std::wstring> ConvertRun::NextToRead(const std::wstring& output) const {
    const int32_t next = current_ + 1;
    // Extracted members make way for others, and are deleted by patterns.
    if (next > list_.UpperBound() || list_.IsExtracted(next)) return std::nullopt;
    // A plug-in that crashes may leave a lock of the system's behind, and whatever works on another
    // thread would wait for it for ever.
    if (HasPluginCrashed() || !monitor_.SetProgressBar(-1, -1, 0, 0)) return std::nullopt;
    const std::wstring& path = list_.At(next).path;
    if (EqualsIgnoreCase(path, output) || !CheckDecodeFileName(FileNameOf(path))) {
        return std::nullopt;
    }
    return path;
}

StepResult ConvertRun::SaveConvertedPicture(const PicturePair& picture,
                                            const std::wstring& outputFolder,
                                            const std::wstring& path) {
    dib::BitmapInfoHeader header{};
    GetPictureHeader(picture, header);
    const int32_t height = header.height < 0 ? -header.height : header.height;
    if (!CheckDecodeSize(header.width, height)) {
        log_.WriteConvertLog(L"詳細情報", {}, 4);
        log_.WriteConvertLog(L"画像の大きさが小さいので処理を中止しました", {}, 4);
        log_.WriteConvertLog(L"画像サイズ", SizeText(header.width, height), 4);
        Report(FileOutcome::kDeclined, FileReason::kTooSmall);
        return StepResult::kNotSaved;
    }
    const std::wstring savedName = SavedNameFor(path, outputFolder, ExtensionFor(header.bitCount));
    log_.WriteConvertLog(L"画像の色数", std::to_wstring(header.bitCount) + L" bit", 2);
    log_.WriteConvertLog(L"保存ファイル名", outputFolder + savedName, 2);
    MakeWayFor(outputFolder + savedName);
    report_.target = outputFolder + savedName;
    if (const DWORD error = SaveAndRead(picture, report_.target); error != ERROR_SUCCESS) {
        log_.WriteConvertLog(L"保存に失敗しました", savedName, 2);
        Report(FileOutcome::kFailed, ReasonOfWriteError(error, report_.target));
        return StepResult::kNotSaved;
    }
    savedFiles_.insert(ToUpper(outputFolder + savedName));
    Report(FileOutcome::kConverted);
    return StepResult::kDone;
}

}  // namespace tessary
