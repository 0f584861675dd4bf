# libzstd: the static library, which only unpacks.
# shellcheck shell=bash disable=SC2034,SC2154

cmake_folder=$work/source/build/cmake
cmake_options=(-DZSTD_BUILD_PROGRAMS=OFF -DZSTD_BUILD_SHARED=OFF -DZSTD_BUILD_STATIC=ON -DZSTD_BUILD_TESTS=OFF
    -DZSTD_LEGACY_SUPPORT=OFF -DZSTD_MULTITHREAD_SUPPORT=OFF)
