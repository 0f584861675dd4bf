# The libraries that decode and compress, under names of our own: tessary::jpeg (libjpeg-turbo,
# jpeglib.h), tessary::png (libpng) and tessary::zlib. scripts/dependencies.sh puts them where the
# presets' CMAKE_PREFIX_PATH looks.

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
