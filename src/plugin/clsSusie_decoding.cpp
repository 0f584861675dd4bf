// Reading the size of the bound picture and decoding it.
#include "app/base/helper_function.h"
#include "helpers/convertdib/convertdib.h"
#include "picture/srgb_picture.h"
#include "plugin/clsSusie.h"

namespace tessary {
namespace {

// How often a call that fails is made: a file may have been held by somebody else for a moment.
constexpr int kFileTries = 2;
constexpr int kMemoryTries = 1;

// What a decode that gave no usable picture is said to have answered.
constexpr uint32_t kNoPictureResult = susie::kBrokenData;

}  // namespace

PictureSize clsSusie::Size() {
    RequireModule();
    if (bound_.size) return *bound_.size;
    const bool isGone = bound_.memory != nullptr && !IsLocalHandleValid(bound_.memory);
    if (bound_.IsEmpty() || isGone) {
        UnloadAfterUse();
        return {};
    }
    const Source source(bound_);
    const auto measure = [&] { return connection_->Measure(source.Get()); };
    return bound_.size.emplace(Ask(L"GetPictureInfo", source.Get(), measure).size);
}

int32_t clsSusie::Width() {
    return Member(L"Property Get Width", [&] { return Size().width; });
}

int32_t clsSusie::Height() {
    return Member(L"Property Get Height", [&] { return Size().height; });
}

int32_t clsSusie::ColorDepth() {
    return Member(L"Property Get ColorDepth", [&] { return Size().colorDepth; });
}

void clsSusie::RequirePictureSource() const {
    if (bound_.IsEmpty()) throw PluginError(kErrorNothingBound, kNothingBoundText);
    if (traits_.style != kStylePicture) {
        throw PluginError(kErrorWrongPluginKind, kMethodNotOfferedText);
    }
}

uint32_t clsSusie::DecodePicture(DecodeTarget target, uint32_t flags, const SusieProgress& progress,
                                 const std::wstring& bmpFile, Picture* picture, uint32_t enough) {
    return Member(L"DecodePicture(", [&] {
        RequireNoCall();
        frames_ = {};
        RequirePictureSource();
        if (target == DecodeTarget::kBmpFile ? bmpFile.empty() : picture == nullptr) {
            throw PluginError(kErrorInvalidArgument, kInvalidArgumentText);
        }
        RequireModule();
        uint32_t resultFlag = 0;
        Picture decoded = Decode(flags, enough, progress, resultFlag);
        if (target == DecodeTarget::kBmpFile) return SaveBmp(decoded, bmpFile) | resultFlag;
        *picture = std::move(decoded);
        return resultFlag;
    });
}

Picture clsSusie::Decode(uint32_t flags, uint32_t enough, const SusieProgress& progress,
                         uint32_t& resultFlag) {
    condition_ = {};
    const Source source(bound_);
    const int tries = source.Get().isFile ? kFileTries : kMemoryTries;
    DecodedPicture decoded;
    const auto decode = [&](DecodeKind kind) {
        for (int i = 0;
             i < tries && !decoded.HasSucceeded() && !decoded.HasCrashed() && !decoded.wasStopped;
             ++i) {
            decoded = Ask(L"GetPicture", source.Get(), [&] {
                return connection_->Decode(source.Get(), {kind, enough}, progress);
            });
            condition_ = decoded.condition;
        }
    };
    if ((flags & kDecodeTryPreview) != 0) {
        decode(DecodeKind::kPreview);
        if (decoded.HasSucceeded()) resultFlag = kPreviewResult;
    }
    const bool inOwnColors = (flags & kDecodeInOwnColors) != 0;
    decode(inOwnColors ? DecodeKind::kFullInOwnColors : DecodeKind::kFull);
    if (!decoded.HasSucceeded())
        throw DecodeError(static_cast<uint32_t>(decoded.code) | resultFlag);
    if (!decoded.picture) throw DecodeError(kNoPictureResult | resultFlag);
    frames_ = decoded.frames;
    return inOwnColors ? WithQuickProfile(std::move(decoded.picture))
                       : SrgbPicture(std::move(decoded.picture));
}

Picture clsSusie::DecodeFrame(uint32_t index, const SusieProgress& progress, uint32_t& duration) {
    return Member(L"DecodeFrame(", [&] {
        RequireNoCall();
        RequirePictureSource();
        RequireModule();
        const Source source(bound_);
        DecodedFrame decoded = Ask(L"GetFrame", source.Get(), [&] {
            return connection_->DecodeFrame(source.Get(), index, progress);
        });
        condition_ = decoded.condition;
        if (!decoded.HasSucceeded()) throw DecodeError(static_cast<uint32_t>(decoded.code));
        if (!decoded.picture) throw DecodeError(kNoPictureResult);
        duration = decoded.duration;
        return SrgbPicture(std::move(decoded.picture));
    });
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
