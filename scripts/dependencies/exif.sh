# libexif: the library alone; its own build needs a Unix shell.
# shellcheck shell=bash disable=SC2034,SC2154

cmake_folder=$recipes/exif
cmake_options=("-DSOURCE_FOLDER=$work/source")
