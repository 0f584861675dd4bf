// What libarchive calls when it cannot go on: for want of memory, or where it has counted wrong. It
// would end the process, which is not its own. The callers are C, compiled so that exceptions pass.
#include <cstring>
#include <new>
#include <stdexcept>

extern "C" [[noreturn]] void __archive_errx(int, const char* message) {
    if (std::strstr(message, "emory") != nullptr) throw std::bad_alloc();
    throw std::logic_error("libarchive");
}
