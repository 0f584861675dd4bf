# Compiler settings of our own code, and the one place that knows where finished programs go.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)

# Users get programs without symbol tables: half the size.
add_link_options($<$<CONFIG:Release>:-s>)

# The same source makes the same bytes, whenever and wherever it is built.
if(WIN32)
    add_link_options(-Wl,--no-insert-timestamp)
endif()

# The finished application folder: the program, its helper libraries and the bundled plug-ins side by side.
set(TESSARY_APP_DIR "${CMAKE_BINARY_DIR}/bin")
# What earlier builds made under other names.
file(REMOVE "${TESSARY_APP_DIR}/axtarc.spi" "${TESSARY_APP_DIR}/iftjpeg.spi" "${TESSARY_APP_DIR}/iftpng.spi"
    "${TESSARY_APP_DIR}/iftwic.spi")

add_library(tessary_options INTERFACE)
target_include_directories(tessary_options INTERFACE "${CMAKE_SOURCE_DIR}" "${CMAKE_SOURCE_DIR}/src")
target_compile_options(tessary_options INTERFACE -Wall -Wextra -Werror)
if(WIN32)
    target_compile_definitions(tessary_options INTERFACE
        UNICODE _UNICODE NOMINMAX WIN32_LEAN_AND_MEAN STRICT _WIN32_WINNT=0x0601 WINVER=0x0601)
else()
    target_compile_options(tessary_options INTERFACE
        -fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
    target_link_options(tessary_options INTERFACE -fsanitize=address,undefined)
endif()

# tessary_add_library(NAME sources… [LINK libraries…]): a static library of our own code.
function(tessary_add_library name)
    cmake_parse_arguments(ARG "" "" "LINK" ${ARGN})
    add_library(${name} STATIC ${ARG_UNPARSED_ARGUMENTS})
    target_link_libraries(${name} PUBLIC tessary_options ${ARG_LINK})
endfunction()

# tessary_add_module(NAME FILE file.ext [DIR folder] SOURCES … [LINK …]): a DLL that is loaded at run time under
# exactly that file name, placed in the application folder (or DIR). A .def file among SOURCES names its exports.
function(tessary_add_module name)
    cmake_parse_arguments(ARG "" "FILE;DIR" "SOURCES;LINK" ${ARGN})
    if(NOT ARG_DIR)
        set(ARG_DIR "${TESSARY_APP_DIR}")
    endif()
    get_filename_component(stem "${ARG_FILE}" NAME_WLE)
    get_filename_component(extension "${ARG_FILE}" LAST_EXT)
    add_library(${name} MODULE ${ARG_SOURCES})
    target_link_libraries(${name} PRIVATE tessary_options ${ARG_LINK})
    set_target_properties(${name} PROPERTIES
        PREFIX "" OUTPUT_NAME "${stem}" SUFFIX "${extension}"
        LIBRARY_OUTPUT_DIRECTORY "${ARG_DIR}")
endfunction()
