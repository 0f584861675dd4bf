#include "helpers/susiectl/process_end.h"

#include <windows.h>

namespace tessary::susiectl {

void EndProcess() {
    for (;;)
        TerminateProcess(GetCurrentProcess(), kEndedByPlugin);
}

}  // namespace tessary::susiectl
