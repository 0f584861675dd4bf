// What libbz2 calls when it is in a state that cannot be. Its own answer ends the process,
// which is not its own. The callers are C, compiled so that exceptions pass.
#include <stdexcept>

extern "C" void bz_internal_error(int) {
    throw std::logic_error("libbz2");
}
