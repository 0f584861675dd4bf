# OpenJPEG: the static library.
# shellcheck shell=bash disable=SC2034

cmake_options=(-DBUILD_SHARED_LIBS=OFF -DBUILD_CODEC=OFF -DBUILD_TESTING=OFF -DBUILD_PKGCONFIG_FILES=OFF)
