#include "helpers/susiectl/progress.h"

#include "helpers/susiectl/guard_context.h"

namespace tessary::susiectl {

int __stdcall ReportProgress(int done, int total, LONG_PTR) {
    const GuardContext* guard = InnermostGuard();
    if (!guard || !guard->progress.callback) return 0;
    const FloatingPointScope hostState(guard->hostState);
    return guard->progress.callback(done, total, guard->progress.userData);
}

}  // namespace tessary::susiectl
