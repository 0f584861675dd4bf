# libarchive: the static library with zlib, liblzma and libbz2.
# shellcheck shell=bash disable=SC2034,SC2154

cmake_folder=$recipes/archive
cmake_options=("-DSOURCE_FOLDER=$work/source" -DZLIB_USE_STATIC_LIBS=ON)
