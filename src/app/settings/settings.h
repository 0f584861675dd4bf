// Reading the settings into the process-wide values at start-up and writing them back at shutdown.
#pragma once

namespace tessary {

// Each reads its own section, then `FileFormat`, in a fixed order. A value that does not convert
// ends the reader with a message and false: what was read before it stays set, the rest keeps its
// previous contents.
bool ReadGeneralSettings();
bool ReadConvertSettings();

// Writes the section `General`. A failure shows a message and yields false.
bool WriteGeneralSettings();

// Writes the sections `Convert` and `FileFormat`. A failure asks Abort/Retry/Ignore, whose answer
// changes nothing, and yields false.
bool WriteConvertSettings();

}  // namespace tessary
