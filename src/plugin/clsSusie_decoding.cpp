// Reading the size of the bound picture and decoding it.
#include "app/base/helper_function.h"
#include "helpers/convertdib/convertdib.h"
#include "plugin/clsSusie.h"

namespace tessary {
namespace {

constexpr susie::PictureInfo kUnknownInfo{-1, -1, -1, -1, 0xFFFF, 0xFFFF, -1, nullptr};

// Some plug-ins describe a file only with this flag.
constexpr uint32_t kDescribeFlag = 0x80;

// How often a call that fails is made: a file may have been held by somebody else for a moment.
constexpr int kFileTries = 2;
constexpr int kMemoryTries = 1;

// What a decode that gave no usable picture is said to have answered.
constexpr uint32_t kNoPictureResult = susie::kBrokenData;

}  // namespace

const susie::PictureInfo& clsSusie::Info() {
    RequireModule();
    if (bound_.info) return *bound_.info;
    const Source source(bound_);
    if (bound_.IsEmpty() || !source.IsValid()) {
        UnloadAfterUse();
        return kUnknownInfo;
    }
    SusieSource asked = source.Get();
    susie::PictureInfo info{};
    int32_t result = calls_.GetPictureInfo(asked, info);
    if (result != susie::kSuccess && result != kResultCrashed && !source.IsMemory()) {
        asked.flag |= kDescribeFlag;
        result = calls_.GetPictureInfo(asked, info);
    }
    const bool known =
        result == susie::kSuccess && info.width > 0 && info.height > 0 && info.colorDepth > 0;
    return bound_.info.emplace(known ? info : kUnknownInfo);
}

int32_t clsSusie::Width() {
    return Member(L"Property Get Width", [&] { return Info().width; });
}

int32_t clsSusie::Height() {
    return Member(L"Property Get Height", [&] { return Info().height; });
}

int32_t clsSusie::ColorDepth() {
    return Member(L"Property Get ColorDepth", [&] { return int32_t{Info().colorDepth}; });
}

uint32_t clsSusie::DecodePicture(DecodeTarget target, uint32_t flags, const SusieProgress& progress,
                                 const std::wstring& bmpFile, Picture* picture) {
    return Member(L"DecodePicture(", [&] {
        RequireNoCall();
        if (bound_.IsEmpty()) throw PluginError(kErrorNothingBound, kNothingBoundText);
        if (dllStyle_ != kStylePicture) {
            throw PluginError(kErrorWrongPluginKind, kMethodNotOfferedText);
        }
        if (target == DecodeTarget::kBmpFile ? bmpFile.empty() : picture == nullptr) {
            throw PluginError(kErrorInvalidArgument, kInvalidArgumentText);
        }
        RequireModule();
        uint32_t resultFlag = 0;
        Picture decoded = Decode(flags, progress, resultFlag);
        if (target == DecodeTarget::kBmpFile) return SaveBmp(decoded, bmpFile) | resultFlag;
        *picture = std::move(decoded);
        return resultFlag;
    });
}

Picture clsSusie::Decode(uint32_t flags, const SusieProgress& progress, uint32_t& resultFlag) {
    calls_.ForgetCondition();
    PicturePair pair;
    int32_t result = kResultUnexpected;
    {
        const Source source(bound_);
        if (!source.IsValid()) throw PluginError(kErrorInvalidMemory, kInvalidMemoryText);
        const ProgressRelay relay(progress);
        const int tries = source.IsMemory() ? kMemoryTries : kFileTries;
        const auto repeated = [&](auto&& call) {
            for (int i = 0; i < tries && result != susie::kSuccess && result != kResultCrashed &&
                            !relay.Stopped();
                 ++i) {
                result = call();
            }
        };
        if ((flags & kDecodeTryPreview) != 0) {
            // GetPreview of most plug-ins does nothing or worse: the full picture it is.
            repeated([&] {
                return calls_.GetPreview(calls_.Address(SusieFunction::kGetPicture), source.Get(),
                                         pair, ProgressRelay::Callback());
            });
            if (result == susie::kSuccess) resultFlag = kPreviewResult;
        }
        repeated([&] { return calls_.GetPicture(source.Get(), pair, ProgressRelay::Callback()); });
    }
    if (result != susie::kSuccess) throw DecodeError(static_cast<uint32_t>(result) | resultFlag);
    Picture picture = Picture::FromPair(pair);
    if (!picture) throw DecodeError(kNoPictureResult | resultFlag);
    return picture;
}

uint32_t clsSusie::SaveBmp(const Picture& picture, const std::wstring& bmpFile) {
    const auto save = HelperFunction<convertdib::SaveToBITMAPFileWFunction>(
        L"convertdib.dll", convertdib::kSaveToBITMAPFileWName);
    const int saved = save == nullptr ? 0
                                      : save(picture.Info().data(), picture.Bits().data(),
                                             bmpFile.c_str(), nullptr, 0);
    if (saved == 0) throw PluginError(kErrorSavingFailed, kSavingFailedText);
    return static_cast<uint32_t>(saved);
}

}  // namespace tessary
