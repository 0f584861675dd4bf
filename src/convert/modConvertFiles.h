// The conversion engine: turns a list of files into picture files in a folder, archives with all
// that is in them, and tells every step in a log.
#pragma once

#include <cstdint>
#include <string>

#include "convert/convert_monitor.h"

namespace tessary {

struct ConvertEnd {
    // False when the run did not get to its end: the folder cannot be made or there is nothing to
    // convert (both without a word), the user stopped it, or one is under way already.
    bool isWhole = false;
    // Why the log file could not be opened, by this run or one before, or not be written to its
    // end, as the system's error; 0: nothing is amiss.
    uint32_t logError = 0;

    explicit operator bool() const { return isWhole; }
};

// Converts the monitor's files into `targetFolder`, which is made if it is missing, as the
// converter's settings say at the beginning. What goes wrong with one file is told in the log, and
// the next one follows. A log file that cannot be opened is switched off (GiveUpLogFile).
//
// The machine does not go to sleep meanwhile.
//
// While it runs the monitor lets messages through. Whoever shows windows meanwhile must keep the
// plug-ins from being loaded anew and the program from ending (ReadUnderWay).
ConvertEnd ConvertFiles(const std::wstring& targetFolder, ConvertMonitor& monitor);

}  // namespace tessary
