# libtiff: the static library with every compression that has a library here.
# shellcheck shell=bash disable=SC2034,SC2154

cmake_options=(-DBUILD_SHARED_LIBS=OFF -Dtiff-tools=OFF -Dtiff-tests=OFF -Dtiff-contrib=OFF -Dtiff-docs=OFF -Dcxx=OFF
    -Djbig=OFF -Dlerc=OFF -Dlibdeflate=OFF -Dlzma=ON -Dzstd=ON -Dwebp=ON -Dold-jpeg=ON -Djpeg=ON -Dzlib=ON
    -DZLIB_USE_STATIC_LIBS=ON)
