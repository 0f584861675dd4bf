#include "app/settings/modValue.h"

#include <algorithm>

namespace tessary {

void PutSecondsRight(GeneralSettings& general) {
    const auto put = [](int16_t& seconds, int16_t standard, int16_t most) {
        seconds = seconds <= 0 ? standard : std::min(seconds, most);
    };
    put(general.askingSeconds, kAskingSeconds, kMostAskingSeconds);
    put(general.workingSeconds, kWorkingSeconds, kMostWorkingSeconds);
}

dib::Backdrop FlatBackdrop(const GeneralSettings& general) {
    switch (general.backdrop) {
        case kBackdropBlack:
            return dib::Backdrop::kBlack;
        case kBackdropGrey:
            return dib::Backdrop::kGrey;
        default:
            return dib::Backdrop::kWhite;
    }
}

ProcessValues& Values() {
    static ProcessValues values;
    return values;
}

saving::SaveOptions ChosenSaveOptions() {
    saving::SaveOptions options = Values().saveOptions;
    options.backdrop = FlatBackdrop(Values().general);
    return options;
}

void GiveUpLogFile(uint32_t error) {
    Values().convert.outputErrorLog = 0;
    Values().logFileRefusal = error;
}

}  // namespace tessary
