# libjpeg-turbo: the static library with the plain interface (jpeglib.h), SIMD through NASM.
# shellcheck shell=bash disable=SC2034,SC2154

# Its default for BUILD is the day, which ends up in our programs.
cmake_options=(-DENABLE_SHARED=OFF -DWITH_TURBOJPEG=OFF -DWITH_JAVA=OFF -DREQUIRE_SIMD=ON
    "-DBUILD=$upstream")
if [[ $preset == native ]]; then
    # The sanitizers see through C only.
    cmake_options+=(-DREQUIRE_SIMD=OFF -DWITH_SIMD=OFF)
fi
