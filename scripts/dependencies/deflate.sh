# libdeflate: the static library; its own makefile has no notion of our compilers.
# shellcheck shell=bash disable=SC2034,SC2154

cmake_folder=$recipes/deflate
cmake_options=("-DSOURCE_FOLDER=$work/source")
