#include "helpers/convertdib/run_length_encoder.h"

#include <algorithm>

namespace tessary::convertdib {
namespace {

using Pixels = std::span<const uint8_t>;

constexpr size_t kMostPixels = 255;   // of one code
constexpr size_t kLeastLiterals = 3;  // fewer unencoded pixels mean something else

struct Rle8 {
    static constexpr size_t kPeriod = 1;  // a run repeats this many pixels
    static constexpr size_t kRun = 3;     // from here on a run is shorter than literals
    static constexpr size_t kBreak = 5;   // and here it pays to end literals for it
    static uint8_t RunValue(Pixels run) { return run[0]; }
    static void PutLiterals(Pixels pixels, std::vector<uint8_t>& codes) {
        codes.insert(codes.end(), pixels.begin(), pixels.end());
    }
};

struct Rle4 {
    static constexpr size_t kPeriod = 2;
    static constexpr size_t kRun = 5;
    static constexpr size_t kBreak = 9;
    static uint8_t RunValue(Pixels run) {
        return static_cast<uint8_t>(run[0] << 4 | (run.size() > 1 ? run[1] : 0));
    }
    static void PutLiterals(Pixels pixels, std::vector<uint8_t>& codes) {
        for (size_t i = 0; i < pixels.size(); i += 2) {
            codes.push_back(RunValue(pixels.subspan(i, std::min<size_t>(2, pixels.size() - i))));
        }
    }
};

// The pixels at the start of `pixels` that repeat, at most `most`.
template <typename Code>
size_t RunLength(Pixels pixels, size_t most) {
    const size_t end = std::min(most, pixels.size());
    size_t length = std::min(Code::kPeriod, end);
    while (length < end && pixels[length] == pixels[length - Code::kPeriod])
        ++length;
    return length;
}

// The pixels before the next run that is worth a code of its own.
template <typename Code>
size_t LiteralLength(Pixels pixels) {
    const size_t end = std::min(kMostPixels, pixels.size());
    size_t length = 1;
    while (length < end && RunLength<Code>(pixels.subspan(length), Code::kBreak) < Code::kBreak)
        ++length;
    return length;
}

template <typename Code>
void PutRun(Pixels run, std::vector<uint8_t>& codes) {
    codes.push_back(static_cast<uint8_t>(run.size()));
    codes.push_back(Code::RunValue(run));
}

template <typename Code>
void PutLiterals(Pixels pixels, std::vector<uint8_t>& codes) {
    codes.push_back(0);
    codes.push_back(static_cast<uint8_t>(pixels.size()));
    const size_t start = codes.size();
    Code::PutLiterals(pixels, codes);
    if ((codes.size() - start) % 2 != 0) codes.push_back(0);
}

template <typename Code>
void EncodeRow(Pixels row, std::vector<uint8_t>& codes) {
    while (!row.empty()) {
        size_t length = RunLength<Code>(row, kMostPixels);
        const size_t literals = length < Code::kRun ? LiteralLength<Code>(row) : 0;
        if (literals >= kLeastLiterals) {
            length = literals;
            PutLiterals<Code>(row.first(length), codes);
        } else {
            PutRun<Code>(row.first(length), codes);
        }
        row = row.subspan(length);
    }
}

}  // namespace

void EncodeRle4(Pixels row, std::vector<uint8_t>& codes) {
    EncodeRow<Rle4>(row, codes);
}

void EncodeRle8(Pixels row, std::vector<uint8_t>& codes) {
    EncodeRow<Rle8>(row, codes);
}

}  // namespace tessary::convertdib
