// Times the resize step and measures how near results come to the exact one.
//
//   resize_bench time PICTURE WIDTHxHEIGHT RESULT   prints the median of several runs in
//                                                   milliseconds and writes the resized picture
//   resize_bench light PICTURE WIDTHxHEIGHT RESULT  the same in linear light
//   resize_bench psnr PICTURE RESULT…               prints the signal-to-noise ratio of each
//                                                   resized picture against the double-precision
//                                                   resize of PICTURE, in dB
//   resize_bench lightpsnr PICTURE RESULT…          the same against the one in linear light
//
// All pictures are bitmap files of the plain form.
#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <optional>
#include <string>
#include <vector>

#include "helpers/dib/unpack_row.h"
#include "helpers/kernel/resize.h"
#include "tests/helpers/kernel/reference_resize.h"

namespace {

using namespace tessary;

constexpr size_t kRuns = 21;
constexpr uint32_t kPixelOffset = dib::kFileHeaderSize + dib::kInfoHeaderSize;

class BitmapInMemory {
  public:
    explicit BitmapInMemory(const std::string& fileName)
        : bytes_(static_cast<size_t>(std::filesystem::file_size(fileName))) {
        std::ifstream file(fileName, std::ios::binary);
        file.read(reinterpret_cast<char*>(bytes_.data()), std::ssize(bytes_));
    }
    dib::DibView View() const {
        dib::BitmapFileHeader header{};
        std::memcpy(&header, bytes_.data(), std::min(sizeof(header), bytes_.size()));
        const auto all = std::span(bytes_);
        return dib::DibView::Of(
                   all.subspan(dib::kFileHeaderSize, header.pixelOffset - dib::kFileHeaderSize),
                   all.subspan(header.pixelOffset))
            .value();
    }

  private:
    std::vector<uint8_t> bytes_;
};

void WriteBitmap(const std::string& fileName, int32_t width, int32_t height,
                 const std::vector<uint8_t>& rows) {
    dib::BitmapFileHeader fileHeader{};
    fileHeader.type = dib::kBitmapFileType;
    fileHeader.pixelOffset = kPixelOffset;
    dib::BitmapInfoHeader header{};
    header.size = dib::kInfoHeaderSize;
    header.width = width;
    header.height = height;
    header.planes = 1;
    header.bitCount = 24;
    std::ofstream file(fileName, std::ios::binary);
    file.write(reinterpret_cast<const char*>(&fileHeader), sizeof(fileHeader));
    file.write(reinterpret_cast<const char*>(&header), sizeof(header));
    file.write(reinterpret_cast<const char*>(rows.data()), std::ssize(rows));
}

double MedianMilliseconds(const dib::DibView& picture, int32_t width, int32_t height,
                          kernel::Light light, std::vector<uint8_t>& rows) {
    std::vector<double> times;
    for (size_t run = 0; run < kRuns; ++run) {
        const auto start = std::chrono::steady_clock::now();
        kernel::Resize(picture, width, height, {0, 0, width, height},
                       kernel::ResizeFilter::kAutomatic, rows, kernel::BestInstructions(),
                       dib::Backdrop::kWhite, light);
        const std::chrono::duration<double, std::milli> time =
            std::chrono::steady_clock::now() - start;
        times.push_back(time.count());
    }
    std::nth_element(times.begin(), times.begin() + kRuns / 2, times.end());
    return times[kRuns / 2];
}

double SignalToNoise(const std::vector<double>& exact, const dib::DibView& result) {
    const dib::RowReader reader(result);
    std::vector<uint8_t> row(static_cast<size_t>(result.Width()) * 3);
    const double* wanted = exact.data();
    double squares = 0;
    for (int32_t y = 0; y < result.Height(); ++y) {
        reader.Row(result.Row(y), row);
        for (const uint8_t sample : row) {
            const double error = sample - std::clamp(*wanted++, 0.0, 255.0);
            squares += error * error;
        }
    }
    return 10 * std::log10(255.0 * 255.0 * static_cast<double>(exact.size()) / squares);
}

int Main(const std::vector<std::string>& arguments) {
    const auto is = [&](const char* stored, const char* linear) {
        return arguments[0] == stored || arguments[0] == linear;
    };
    if (arguments.size() < 3) return 2;
    const kernel::Light light =
        arguments[0].starts_with("light") ? kernel::Light::kLinear : kernel::Light::kStored;
    if (arguments.size() == 4 && is("time", "light")) {
        int32_t width = 0;
        int32_t height = 0;
        if (std::sscanf(arguments[2].c_str(), "%dx%d", &width, &height) != 2) return 2;
        const BitmapInMemory picture(arguments[1]);
        const uint64_t stride = dib::RowStride(static_cast<uint64_t>(width), 24);
        std::vector<uint8_t> rows(static_cast<size_t>(stride) * static_cast<size_t>(height));
        std::printf("%.1f\n", MedianMilliseconds(picture.View(), width, height, light, rows));
        WriteBitmap(arguments[3], width, height, rows);
        return 0;
    }
    if (is("psnr", "lightpsnr")) {
        const BitmapInMemory picture(arguments[1]);
        std::vector<double> exact;
        for (size_t i = 2; i < arguments.size(); ++i) {
            const BitmapInMemory result(arguments[i]);
            const dib::DibView view = result.View();
            if (exact.empty()) {
                exact = kernel::ReferenceResize(picture.View(), view.Width(), view.Height(), light);
            }
            std::printf("%.2f\n", SignalToNoise(exact, view));
        }
        return 0;
    }
    return 2;
}

}  // namespace

int main(int argc, char** argv) {
    try {
        return Main({argv + 1, argv + argc});
    } catch (const std::exception& error) {
        std::fprintf(stderr, "resize_bench: %s\n", error.what());
        return 1;
    }
}
