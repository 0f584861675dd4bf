# libjpeg-turbo: the static libraries with the plain interface (jpeglib.h) and with the one that turns
# files without loss (turbojpeg.h); SIMD through NASM.
# shellcheck shell=bash disable=SC2034,SC2154

# Nobody has it choose its SIMD code by the environment. Its default for BUILD is the day, which ends
# up in our programs.
cmake_options=(-DENABLE_SHARED=OFF -DWITH_TURBOJPEG=ON -DWITH_JAVA=OFF -DREQUIRE_SIMD=ON
    "-DBUILD=$upstream" "-DCMAKE_C_FLAGS_RELEASE=-O3 -DNDEBUG -DNO_PUTENV")
if [[ $preset == native ]]; then
    # The sanitizers see through C only.
    cmake_options+=(-DREQUIRE_SIMD=OFF -DWITH_SIMD=OFF)
fi
