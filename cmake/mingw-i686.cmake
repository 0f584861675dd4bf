# Toolchain: 32-bit Windows from any machine that has mingw-w64 with POSIX threads (std::thread, std::mutex).
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR i686)

set(CMAKE_C_COMPILER i686-w64-mingw32-gcc-posix)
set(CMAKE_CXX_COMPILER i686-w64-mingw32-g++-posix)
set(CMAKE_RC_COMPILER i686-w64-mingw32-windres)

# SSE2 is the floor of every Windows 7 machine; 4-byte stack alignment at entry is what old plug-ins give us.
set(CMAKE_C_FLAGS_INIT "-march=pentium4 -mtune=generic -mstackrealign")
set(CMAKE_CXX_FLAGS_INIT "-march=pentium4 -mtune=generic -mstackrealign")

# Nothing may depend on runtime DLLs that a bare Windows lacks.
set(CMAKE_EXE_LINKER_FLAGS_INIT "-static")
set(CMAKE_SHARED_LINKER_FLAGS_INIT "-static -Wl,--kill-at")
set(CMAKE_MODULE_LINKER_FLAGS_INIT "-static -Wl,--kill-at")

# Libraries are the compiler's and ours, never the build machine's own.
get_filename_component(tessary_dependencies "${CMAKE_CURRENT_LIST_DIR}/../build/deps/x86" ABSOLUTE)
set(CMAKE_FIND_ROOT_PATH /usr/i686-w64-mingw32 "${tessary_dependencies}")
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
