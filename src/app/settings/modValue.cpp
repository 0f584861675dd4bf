#include "app/settings/modValue.h"

namespace tessary {

ProcessValues& Values() {
    static ProcessValues values;
    return values;
}

void GiveUpLogFile(uint32_t error) {
    Values().convert.outputErrorLog = 0;
    Values().logFileRefusal = error;
}

}  // namespace tessary
