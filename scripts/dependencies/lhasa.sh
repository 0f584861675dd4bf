# lhasa's library: its own build needs a Unix shell and its compiler.
# shellcheck shell=bash disable=SC2034,SC2154

cmake_folder=$recipes/lhasa
cmake_options=("-DSOURCE_FOLDER=$work/source")
