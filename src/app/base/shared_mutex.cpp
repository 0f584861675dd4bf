#include "app/base/shared_mutex.h"

namespace tessary {

UniqueMutex SharedMutex(const wchar_t* name) {
    // By default only its maker may have it.
    SECURITY_DESCRIPTOR everybody{};
    InitializeSecurityDescriptor(&everybody, SECURITY_DESCRIPTOR_REVISION);
    SetSecurityDescriptorDacl(&everybody, TRUE, nullptr, FALSE);
    SECURITY_ATTRIBUTES attributes{sizeof(attributes), &everybody, FALSE};
    // No more access than it takes to hold it: an administrator's copy may have made it.
    return UniqueMutex(CreateMutexExW(&attributes, name, 0, SYNCHRONIZE | MUTEX_MODIFY_STATE));
}

}  // namespace tessary
