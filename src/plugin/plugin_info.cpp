#include "plugin/plugin_info.h"

#include <algorithm>

#include "app/base/text.h"

namespace tessary {
namespace {

constexpr int32_t kProductNameNumber = 1;
constexpr int32_t kFirstPatternNumber = 2;

constexpr int32_t kTextLength = 255;

struct InfoText {
    int32_t answer;  // characters, by the plug-in's own count; 0 at the end of its texts
    std::wstring text;
};

InfoText ReadInfoText(SusieCalls& calls, int32_t infoNumber) {
    std::string buffer(kTextLength, '\0');
    const int32_t answer = calls.GetPluginInfo(infoNumber, buffer.data(), kTextLength);
    const bool isCount = answer > 0 && answer < kTextLength;
    buffer.resize(static_cast<size_t>(isCount ? answer : kTextLength));
    buffer.resize(std::min(buffer.find('\0'), buffer.size()));
    return {answer, FromAnsi(buffer)};
}

// Whether an answer is no text but the end of them, or the word that there was an error.
bool IsNoText(int32_t answer) {
    return answer <= 0 || answer == kResultCrashed;
}

}  // namespace

FilePatterns ReadFilePatterns(SusieCalls& calls) {
    FilePatterns patterns;
    // Bounded in both ways: some plug-ins never answer 0, with or without a text.
    for (size_t pair = 0; pair < kMaxPatterns && patterns.size() < kMaxPatterns; ++pair) {
        const InfoText info =
            ReadInfoText(calls, kFirstPatternNumber + 2 * static_cast<int32_t>(pair));
        if (IsNoText(info.answer)) break;
        if (pair == 0 && (info.text.empty() || info.text.front() == L' ')) break;
        AppendPatterns(ToUpper(info.text), patterns);
    }
    if (patterns.empty()) patterns.push_back(kEveryFile);
    return patterns;
}

std::wstring ReadProductName(SusieCalls& calls) {
    InfoText info = ReadInfoText(calls, kProductNameNumber);
    return IsNoText(info.answer) ? std::wstring() : std::move(info.text);
}

}  // namespace tessary
