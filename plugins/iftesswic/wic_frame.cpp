#include "plugins/iftesswic/wic_frame.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <optional>

#include "helpers/system/system_library.h"
#include "plugins/common/palette.h"
#include "plugins/common/srgb.h"
#include "plugins/iftesswic/source_stream.h"

namespace tessary::wic {
namespace {

constexpr double kInchesPerMetre = 1 / 0.0254;

// Resolution that decoders answer when the file has none.
constexpr double kDefaultDotsPerInch = 96;

// Of Windows 10 and its extensions: too new for the compiler's headers.
constexpr GUID kContainerHeif{
    0xe1e62521, 0x6787, 0x405b, {0xa3, 0x39, 0x50, 0x07, 0x15, 0xb5, 0x76, 0x3f}};
constexpr GUID kContainerDds{
    0x9967cb95, 0x2e85, 0x4ac8, {0x8c, 0xa2, 0x83, 0xd7, 0xcc, 0xd4, 0x25, 0xc9}};

const GUID* ContainerId(Container container) {
    switch (container) {
        case Container::kHeif:
            return &kContainerHeif;
        case Container::kDds:
            return &kContainerDds;
        case Container::kJpegXr:
            return &GUID_ContainerFormatWmp;
        default:
            return nullptr;
    }
}

// The system's own decoder, for formats that have one in every Windows: asking all decoders costs
// more than decoding a small picture.
const CLSID* DecoderClass(Container container) {
    switch (container) {
        case Container::kTiff:
            return &CLSID_WICTiffDecoder;
        case Container::kIcon:
        case Container::kCursor:
            return &CLSID_WICIcoDecoder;
        default:
            return nullptr;
    }
}

// A 16-bit number of a file's metadata; nothing when there is none of that name.
std::optional<uint16_t> ReadNumber(IWICMetadataQueryReader* reader, const wchar_t* name) {
    PROPVARIANT value;
    PropVariantInit(&value);
    std::optional<uint16_t> number;
    if (SUCCEEDED(reader->GetMetadataByName(name, &value)) && value.vt == VT_UI2) {
        number = value.uiVal;
    }
    PropVariantClear(&value);
    return number;
}

std::vector<dib::PaletteEntry> FramePalette(IWICImagingFactory* factory,
                                            IWICBitmapFrameDecode* frame, unsigned bitCount) {
    ComPtr<IWICPalette> palette;
    Check(factory->CreatePalette(&palette));
    Check(frame->CopyPalette(palette.Get()));
    std::array<WICColor, 256> colors{};
    UINT count = 0;
    Check(palette->GetColors(static_cast<UINT>(colors.size()), colors.data(), &count));
    std::vector<dib::PaletteEntry> entries(size_t{1} << bitCount);
    for (size_t i = 0; i < std::min<size_t>(entries.size(), count); ++i) {
        const WICColor argb = colors[i];
        const dib::PaletteEntry color{static_cast<uint8_t>(argb), static_cast<uint8_t>(argb >> 8),
                                      static_cast<uint8_t>(argb >> 16), 0};
        entries[i] = codec::BlendColor(color, static_cast<uint8_t>(argb >> 24), codec::kWhite);
    }
    return entries;
}

struct FormatBits {
    const GUID* format;
    unsigned bitCount;
};

unsigned BitsOf(std::span<const FormatBits> formats, const GUID& format) {
    for (const FormatBits& known : formats) {
        if (IsEqualGUID(*known.format, format)) return known.bitCount;
    }
    return 0;
}

unsigned IndexedBits(const GUID& format) {
    static const std::array kFormats{
        FormatBits{&GUID_WICPixelFormat1bppIndexed, 1},
        FormatBits{&GUID_WICPixelFormat2bppIndexed, 2},
        FormatBits{&GUID_WICPixelFormat4bppIndexed, 4},
        FormatBits{&GUID_WICPixelFormat8bppIndexed, 8},
    };
    return BitsOf(kFormats, format);
}

unsigned GreyBits(const GUID& format) {
    static const std::array kFormats{
        FormatBits{&GUID_WICPixelFormatBlackWhite, 1}, FormatBits{&GUID_WICPixelFormat2bppGray, 2},
        FormatBits{&GUID_WICPixelFormat4bppGray, 4},   FormatBits{&GUID_WICPixelFormat8bppGray, 8},
        FormatBits{&GUID_WICPixelFormat16bppGray, 16},
    };
    return BitsOf(kFormats, format);
}

constexpr wchar_t kCodecLibrary[] = L"windowscodecs.dll";

// An object of a class that the system's own library has. The library is asked itself: looking the
// class up in the registry takes longer than decoding a small picture.
template <class Interface>
ComPtr<Interface> MakeObject(const CLSID& id) {
    static const auto getClassObject =
        SystemFunction<decltype(&DllGetClassObject)>(kCodecLibrary, "DllGetClassObject");
    ComPtr<IClassFactory> maker;
    ComPtr<Interface> object;
    if (getClassObject != nullptr && SUCCEEDED(getClassObject(id, IID_PPV_ARGS(&maker)))) {
        Check(maker->CreateInstance(nullptr, IID_PPV_ARGS(&object)));
    } else {
        Check(CoCreateInstance(id, nullptr, CLSCTX_INPROC_SERVER, IID_PPV_ARGS(&object)));
    }
    return object;
}

// `source` in another format; no pixel is touched before it is read.
ComPtr<IWICBitmapSource> Converted(IWICBitmapSource* source, const GUID& format) {
    static const auto convert =
        SystemFunction<decltype(&WICConvertBitmapSource)>(kCodecLibrary, "WICConvertBitmapSource");
    ComPtr<IWICBitmapSource> converted;
    Check(convert != nullptr ? convert(format, source, &converted) : E_NOTIMPL);
    return converted;
}

ComPtr<IWICImagingFactory> MakeFactory() {
    return MakeObject<IWICImagingFactory>(CLSID_WICImagingFactory);
}

ComPtr<IWICBitmapDecoder> OpenDecoder(IWICImagingFactory* factory, Container container,
                                      IStream* stream) {
    ComPtr<IWICBitmapDecoder> decoder;
    if (const CLSID* id = DecoderClass(container)) {
        decoder = MakeObject<IWICBitmapDecoder>(*id);
        Check(decoder->Initialize(stream, WICDecodeMetadataCacheOnDemand));
    } else {
        Check(factory->CreateDecoderFromStream(stream, nullptr, WICDecodeMetadataCacheOnDemand,
                                               &decoder));
    }
    return decoder;
}

}  // namespace

bool DecoderInstalled(Container container) {
    const GUID* id = ContainerId(container);
    if (id == nullptr) return container != Container::kUnknown;
    const ComApartment apartment;
    ComPtr<IWICBitmapDecoder> decoder;
    return SUCCEEDED(MakeFactory()->CreateDecoder(*id, nullptr, &decoder));
}

bool ReadsBigEndianSamples() {
    // A grey picture of one pixel, 0x1234.
    static constexpr uint8_t kFile[] = {
        'M', 'M', 0, 42, 0,    0,   0, 8, 0, 9,           // one directory of nine entries:
        1,   0,   0, 3,  0,    0,   0, 1, 0, 1,  0, 0,    // width
        1,   1,   0, 3,  0,    0,   0, 1, 0, 1,  0, 0,    // height
        1,   2,   0, 3,  0,    0,   0, 1, 0, 16, 0, 0,    // bits of a sample
        1,   3,   0, 3,  0,    0,   0, 1, 0, 1,  0, 0,    // not compressed
        1,   6,   0, 3,  0,    0,   0, 1, 0, 1,  0, 0,    // black is 0
        1,   17,  0, 4,  0,    0,   0, 1, 0, 0,  0, 122,  // where the pixel stands
        1,   21,  0, 3,  0,    0,   0, 1, 0, 1,  0, 0,    // samples of a pixel
        1,   22,  0, 3,  0,    0,   0, 1, 0, 1,  0, 0,    // rows of a strip
        1,   23,  0, 4,  0,    0,   0, 1, 0, 0,  0, 2,    // bytes of the pixel
        0,   0,   0, 0,  0x12, 0x34};
    try {
        dib::MemorySource source(kFile);
        const LentStream stream(source);
        const WicFrame frame(Container::kTiff, stream.Get());
        uint8_t pixel[2] = {};
        Check(frame.Pixels().source->CopyPixels(nullptr, sizeof pixel, sizeof pixel, pixel));
        return pixel[0] == 0x34 && pixel[1] == 0x12;
    } catch (const ComFailure&) {
        return false;
    }
}

WicFrame::WicFrame(Container container, const ComPtr<IStream>& stream)
    : factory_(MakeFactory()), decoder_(OpenDecoder(factory_.Get(), container, stream.Get())) {
    Check(decoder_->GetFrame(0, &frame_));
    Check(frame_->GetSize(&width_, &height_));
    if (container == Container::kTiff) ReadOrientation();
    ReadResolution();
}

void WicFrame::ReadOrientation() {
    ComPtr<IWICMetadataQueryReader> reader;
    if (FAILED(frame_->GetMetadataQueryReader(&reader))) return;
    const uint16_t value = ReadNumber(reader.Get(), L"/ifd/{ushort=274}").value_or(1);
    if (value >= 1 && value <= 8) orientation_ = value;
}

void WicFrame::ReadResolution() {
    double x = 0, y = 0;
    if (FAILED(frame_->GetResolution(&x, &y)) || (x == kDefaultDotsPerInch && x == y)) return;
    const auto pels = [](double dotsPerInch) {
        const double value = dotsPerInch * kInchesPerMetre;
        return value >= 1 && value < 1e9 ? static_cast<int32_t>(std::lround(value)) : 0;
    };
    xPelsPerMeter_ = pels(x);
    yPelsPerMeter_ = pels(y);
}

std::optional<color::Profile> WicFrame::Colors() const {
    constexpr UINT kMostContexts = 8;
    constexpr UINT kExifAdobeRgb = 2;
    UINT count = 0;
    if (FAILED(frame_->GetColorContexts(0, nullptr, &count)) || count > kMostContexts) return {};
    std::array<ComPtr<IWICColorContext>, kMostContexts> owners;
    std::array<IWICColorContext*, kMostContexts> contexts{};
    for (UINT i = 0; i < count; ++i) {
        Check(factory_->CreateColorContext(&owners[i]));
        contexts[i] = owners[i].Get();
    }
    if (count == 0 || FAILED(frame_->GetColorContexts(count, contexts.data(), &count))) return {};
    for (IWICColorContext* context : std::span(contexts).first(std::min(count, kMostContexts))) {
        WICColorContextType type = WICColorContextUninitialized;
        UINT value = 0;
        if (context == nullptr || FAILED(context->GetType(&type))) continue;
        if (type == WICColorContextExifColorSpace &&
            SUCCEEDED(context->GetExifColorSpace(&value)) && value == kExifAdobeRgb) {
            return color::Profile::AdobeRgb();
        }
        if (type != WICColorContextProfile ||
            FAILED(context->GetProfileBytes(0, nullptr, &value)) ||
            value > color::kLargestProfile) {
            continue;
        }
        std::vector<uint8_t> icc(value);
        if (FAILED(context->GetProfileBytes(value, icc.data(), &value))) continue;
        if (auto profile = color::Profile::FromIcc(icc)) return profile;
    }
    return {};
}

WicPixels WicFrame::Pixels() const {
    GUID format{};
    Check(frame_->GetPixelFormat(&format));
    auto profile = Colors();
    const bool areInks = IsEqualGUID(format, GUID_WICPixelFormat32bppCMYK) != FALSE;
    // The system makes RGB of inks whose profile is of something else.
    if (areInks && profile && profile->ModelOf() != color::Model::kCmyk) profile.reset();
    WicPixels pixels = PixelsOf(format, profile);
    if (!pixels.palette.empty()) return pixels;
    pixels.toSrgb = codec::ToSrgb(profile, pixels.layout);
    // Where that profile is damaged, or changes nothing, too.
    if (!pixels.toSrgb && color::TargetBytesOf(pixels.layout) != pixels.bitCount / 8) {
        pixels = PixelsOf(format, std::nullopt);
    }
    return pixels;
}

WicPixels WicFrame::PixelsOf(const GUID& format,
                             const std::optional<color::Profile>& profile) const {
    const auto hasModel = [&](color::Model model) {
        return profile && profile->ModelOf() == model;
    };
    WicPixels pixels;
    pixels.source = frame_;
    if ((pixels.bitCount = IndexedBits(format)) != 0) {
        pixels.palette = FramePalette(factory_.Get(), frame_.Get(), pixels.bitCount);
        const auto toSrgb = codec::ToSrgb(profile, color::Layout::kBgr8);
        if (toSrgb) codec::ConvertColors(*toSrgb, pixels.palette);
    } else if ((pixels.bitCount = GreyBits(format)) != 0) {
        pixels.palette = codec::SrgbGreyPalette(profile, std::min(pixels.bitCount, 8u));
    } else if (IsEqualGUID(format, GUID_WICPixelFormat24bppBGR)) {
        pixels.bitCount = 24;
    } else if (IsEqualGUID(format, GUID_WICPixelFormat32bppGrayFloat)) {
        pixels.source = Converted(frame_.Get(), GUID_WICPixelFormat8bppGray);
        pixels.bitCount = 8;
        pixels.palette = codec::GreyPalette(8);
    } else if (IsEqualGUID(format, GUID_WICPixelFormat32bppCMYK) && hasModel(color::Model::kCmyk)) {
        pixels.bitCount = 32;
        pixels.layout = color::Layout::kCmyk8;
    } else if (IsEqualGUID(format, GUID_WICPixelFormat48bppRGB) && hasModel(color::Model::kRgb)) {
        pixels.bitCount = 48;
        pixels.layout = color::Layout::kRgb16;
    } else {
        pixels.source = Converted(frame_.Get(), GUID_WICPixelFormat32bppBGRA);
        pixels.bitCount = 32;
        pixels.layout = color::Layout::kBgra8;
    }
    return pixels;
}

}  // namespace tessary::wic
