// Tells whether a file is a DLL that this process can load.
#pragma once

#include "helpers/susiectl/input_file.h"

namespace tessary::susiectl {

// True for a PE DLL of this process's architecture, by its headers. The system would refuse others
// too, but not silently: for some it shows a message box or starts an emulator.
bool IsLoadableDll(const InputFile& file);

}  // namespace tessary::susiectl
