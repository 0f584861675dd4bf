# giflib: the library alone; its own makefile knows one compiler only.
# shellcheck shell=bash disable=SC2034,SC2154

cmake_folder=$recipes/gif
cmake_options=("-DSOURCE_FOLDER=$work/source")
