#include "tests/helpers/susiectl/ends_in_thread.h"

#include <memory>
#include <utility>

namespace tessary::test {
namespace {

using Work = std::function<void()>;

DWORD WINAPI Run(void* work) {
    const std::unique_ptr<Work> owned(static_cast<Work*>(work));
    (*owned)();
    return 0;
}

}  // namespace

bool EndsInThread(Work work, DWORD longest) {
    auto owned = std::make_unique<Work>(std::move(work));
    const HANDLE thread = CreateThread(nullptr, 0, Run, owned.release(), 0, nullptr);
    const bool hasEnded = WaitForSingleObject(thread, longest) == WAIT_OBJECT_0;
    CloseHandle(thread);
    return hasEnded;
}

}  // namespace tessary::test
