# The libraries that decode and compress, under names of our own: tessary::jpeg (libjpeg-turbo,
# jpeglib.h), tessary::turbojpeg (the same, turbojpeg.h), tessary::png (libpng), tessary::zlib, tessary::lzma (liblzma), tessary::archive
# (libarchive, with what it needs), tessary::lhasa (lhasa/lhasa.h), tessary::deflate
# (libdeflate.h), tessary::lcms (Little CMS, lcms2.h), tessary::exif (libexif/exif-data.h), tessary::gif
# (giflib, gif_lib.h), tessary::webp (libwebp, webp/*.h) and tessary::tiff (libtiff, tiffio.h). scripts/dependencies.sh puts them where the presets'
# CMAKE_PREFIX_PATH looks.

# tessary_find_dependency(NAME PACKAGE imported-target)
function(tessary_find_dependency name package target)
    find_package(${package})
    if(NOT TARGET ${target})
        message(FATAL_ERROR "${package} is missing: run scripts/dependencies.sh")
    endif()
    add_library(tessary::${name} INTERFACE IMPORTED GLOBAL)
    target_link_libraries(tessary::${name} INTERFACE ${target})
endfunction()

set(ZLIB_USE_STATIC_LIBS ON)
set(CMAKE_FIND_PACKAGE_TARGETS_GLOBAL ON)
tessary_find_dependency(zlib ZLIB ZLIB::ZLIB)
tessary_find_dependency(png PNG PNG::PNG)
tessary_find_dependency(jpeg JPEG JPEG::JPEG)
# All versions of today have these; looking for them fails on an instrumented library.
foreach(entry AUTO_DECODER EASY_ENCODER LZMA_PRESET)
    set(LIBLZMA_HAS_${entry} ON)
endforeach()
tessary_find_dependency(lzma LibLZMA LibLZMA::LibLZMA)
target_compile_definitions(tessary::lzma INTERFACE LZMA_API_STATIC)
tessary_find_dependency(bzip2 BZip2 BZip2::BZip2)
tessary_find_dependency(archive LibArchive LibArchive::LibArchive)
target_compile_definitions(tessary::archive INTERFACE LIBARCHIVE_STATIC)
target_link_libraries(tessary::archive INTERFACE tessary::zlib tessary::lzma tessary::bzip2)

# CMake knows none of the others.
# tessary_find_library(NAME TITLE HEADER LIBRARY…)   The libraries in the order in which they need
#                                                    each other.
function(tessary_find_library name title header)
    find_path(TESSARY_${name}_HEADERS ${header})
    add_library(tessary::${name} INTERFACE IMPORTED GLOBAL)
    foreach(library ${ARGN})
        find_library(TESSARY_${library}_LIBRARY ${library})
        if(NOT TESSARY_${library}_LIBRARY OR NOT TESSARY_${name}_HEADERS)
            message(FATAL_ERROR "${title} is missing: run scripts/dependencies.sh")
        endif()
        target_link_libraries(tessary::${name} INTERFACE "${TESSARY_${library}_LIBRARY}")
    endforeach()
    target_include_directories(tessary::${name} INTERFACE "${TESSARY_${name}_HEADERS}")
endfunction()

tessary_find_library(turbojpeg TurboJPEG turbojpeg.h turbojpeg)
tessary_find_library(lhasa lhasa lhasa/lhasa.h lhasa)
tessary_find_library(deflate libdeflate libdeflate.h deflate)
tessary_find_library(gif giflib gif_lib.h gif)
tessary_find_library(lcms "Little CMS" lcms2.h lcms2)
target_compile_definitions(tessary::lcms INTERFACE CMS_NO_REGISTER_KEYWORD)
tessary_find_library(exif libexif libexif/exif-data.h exif)
tessary_find_library(webp libwebp webp/decode.h webpdemux webpmux webp)
tessary_find_library(tiff libtiff tiffio.h tiff zstd)
target_link_libraries(tessary::tiff INTERFACE
    tessary::webp tessary::jpeg tessary::lzma tessary::zlib)
