# liblzma of XZ Utils: the static library, without the programs and without threads.
# shellcheck shell=bash disable=SC2034,SC2154

cmake_options=(-DBUILD_SHARED_LIBS=OFF -DENABLE_THREADS=OFF -DENABLE_NLS=OFF
    -DCREATE_XZ_SYMLINKS=OFF -DCREATE_LZMA_SYMLINKS=OFF)
if [[ $preset == native ]]; then
    # It reads whole blocks of 16 bytes on purpose; the address sanitizer cannot know.
    cmake_options+=(-DHAVE_USABLE_CLMUL=OFF)
fi
