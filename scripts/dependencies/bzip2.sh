# libbz2: its own makefile knows one compiler only.
# shellcheck shell=bash disable=SC2034,SC2154

cmake_folder=$recipes/bzip2
cmake_options=("-DSOURCE_FOLDER=$work/source")
