# The libraries that decode and compress, under names of our own: tessary::jpeg (libjpeg-turbo,
# jpeglib.h), tessary::turbojpeg (the same, turbojpeg.h), tessary::png (libpng), tessary::zlib, tessary::lzma (liblzma), tessary::archive
# (libarchive, with what it needs), tessary::lhasa (lhasa/lhasa.h), tessary::deflate
# (libdeflate.h), tessary::lcms (Little CMS, lcms2.h) and tessary::exif (libexif/exif-data.h). scripts/dependencies.sh puts them where the presets' CMAKE_PREFIX_PATH looks.

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
find_library(TESSARY_TURBOJPEG_LIBRARY turbojpeg)
if(NOT TESSARY_TURBOJPEG_LIBRARY)
    message(FATAL_ERROR "TurboJPEG is missing: run scripts/dependencies.sh")
endif()
get_filename_component(tessary_turbojpeg_prefix "${TESSARY_TURBOJPEG_LIBRARY}/../.." ABSOLUTE)
add_library(tessary::turbojpeg INTERFACE IMPORTED GLOBAL)
target_link_libraries(tessary::turbojpeg INTERFACE "${TESSARY_TURBOJPEG_LIBRARY}")
target_include_directories(tessary::turbojpeg INTERFACE "${tessary_turbojpeg_prefix}/include")
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

# CMake knows no lhasa.
find_library(TESSARY_LHASA_LIBRARY lhasa)
if(NOT TESSARY_LHASA_LIBRARY)
    message(FATAL_ERROR "lhasa is missing: run scripts/dependencies.sh")
endif()
get_filename_component(tessary_lhasa_prefix "${TESSARY_LHASA_LIBRARY}/../.." ABSOLUTE)
add_library(tessary::lhasa INTERFACE IMPORTED GLOBAL)
target_link_libraries(tessary::lhasa INTERFACE "${TESSARY_LHASA_LIBRARY}")
target_include_directories(tessary::lhasa INTERFACE "${tessary_lhasa_prefix}/include")

# Nor libdeflate, of which the compressor is built.
find_library(TESSARY_DEFLATE_LIBRARY deflate)
find_path(TESSARY_DEFLATE_HEADERS libdeflate.h)
if(NOT TESSARY_DEFLATE_LIBRARY OR NOT TESSARY_DEFLATE_HEADERS)
    message(FATAL_ERROR "libdeflate is missing: run scripts/dependencies.sh")
endif()
add_library(tessary::deflate INTERFACE IMPORTED GLOBAL)
target_link_libraries(tessary::deflate INTERFACE "${TESSARY_DEFLATE_LIBRARY}")
target_include_directories(tessary::deflate INTERFACE "${TESSARY_DEFLATE_HEADERS}")

# Nor giflib.
find_library(TESSARY_GIF_LIBRARY gif)
find_path(TESSARY_GIF_HEADERS gif_lib.h)
if(NOT TESSARY_GIF_LIBRARY OR NOT TESSARY_GIF_HEADERS)
    message(FATAL_ERROR "giflib is missing: run scripts/dependencies.sh")
endif()
add_library(tessary::gif INTERFACE IMPORTED GLOBAL)
target_link_libraries(tessary::gif INTERFACE "${TESSARY_GIF_LIBRARY}")
target_include_directories(tessary::gif INTERFACE "${TESSARY_GIF_HEADERS}")

# Nor Little CMS.
find_library(TESSARY_LCMS_LIBRARY lcms2)
find_path(TESSARY_LCMS_HEADERS lcms2.h)
if(NOT TESSARY_LCMS_LIBRARY OR NOT TESSARY_LCMS_HEADERS)
    message(FATAL_ERROR "Little CMS is missing: run scripts/dependencies.sh")
endif()
add_library(tessary::lcms INTERFACE IMPORTED GLOBAL)
target_link_libraries(tessary::lcms INTERFACE "${TESSARY_LCMS_LIBRARY}")
target_include_directories(tessary::lcms INTERFACE "${TESSARY_LCMS_HEADERS}")
target_compile_definitions(tessary::lcms INTERFACE CMS_NO_REGISTER_KEYWORD)

# Nor libexif.
find_library(TESSARY_EXIF_LIBRARY exif)
find_path(TESSARY_EXIF_HEADERS libexif/exif-data.h)
if(NOT TESSARY_EXIF_LIBRARY OR NOT TESSARY_EXIF_HEADERS)
    message(FATAL_ERROR "libexif is missing: run scripts/dependencies.sh")
endif()
add_library(tessary::exif INTERFACE IMPORTED GLOBAL)
target_link_libraries(tessary::exif INTERFACE "${TESSARY_EXIF_LIBRARY}")
target_include_directories(tessary::exif INTERFACE "${TESSARY_EXIF_HEADERS}")
