# libpng: the static library, over the zlib of the preset.
# shellcheck shell=bash disable=SC2034

cmake_options=(-DPNG_SHARED=OFF -DPNG_STATIC=ON -DPNG_EXECUTABLES=OFF -DPNG_TESTS=OFF -DZLIB_USE_STATIC_LIBS=ON)
