# libjpeg-turbo: the static library with the plain interface (jpeglib.h), SIMD through NASM.
# shellcheck shell=bash disable=SC2034,SC2154

cmake_options=(-DENABLE_SHARED=OFF -DWITH_TURBOJPEG=OFF -DWITH_JAVA=OFF -DREQUIRE_SIMD=ON)
if [[ $preset == native ]]; then
    # The sanitizers see through C only.
    cmake_options+=(-DREQUIRE_SIMD=OFF -DWITH_SIMD=OFF)
fi
