// What the worker of a conversion notes for the process that sees to it, in case that the worker is
// ended in the middle.
#pragma once

#include <string>
#include <vector>

#include "convert/convert_monitor.h"

namespace tessary {

// In the worker; from any thread. Without an overseer nothing happens.
void JournalReportBegun();  // the user's report has been begun anew
void JournalReached(const FileReport& report);
void JournalDone(const FileReport& report);

// How far an ended run has come.
struct JournaledRun {
    bool isReportBegun = false;
    std::vector<FileReport> done;
    std::vector<FileReport> broken;  // under way at the end; only the names are known
};

// `notes`: all that the worker has noted. What the end has cut is left out.
JournaledRun ReadJournal(const std::string& notes);

}  // namespace tessary
