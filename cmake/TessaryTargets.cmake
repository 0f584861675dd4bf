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

# What the headers of our files tell Windows, whatever the linker's defaults become.
# scripts/lib/check_programs.py looks at the finished files.
# - System 4.0, as plug-ins of the nineties do. With a program that claims to be made for a newer Windows the system
#   may be stricter: above all it may end the process when it notices a damaged heap, and the heaps of plug-ins are
#   damaged every day. For the same reason nobody calls HeapSetInformation. Which system we know is told by the
#   manifest, which versions, metrics and compatibility settings go by. What the older number changes besides: the
#   sizes of window frames that the system tells include their padding, and under Aero the frame of a window of fixed
#   size is drawn a few pixels beyond its rectangle. Nobody of ours reckons with frames; windows are placed and
#   measured by rectangles that the system itself has told.
# - Addresses are random: nothing needs a place of its own.
# - Not aware of sessions: on a server for many users the system then gives each of them a Windows folder of his own,
#   which is where old plug-ins write their settings.
if(WIN32)
    add_link_options(
        -Wl,--major-os-version,4 -Wl,--minor-os-version,0
        -Wl,--major-subsystem-version,4 -Wl,--minor-subsystem-version,0
        -Wl,--dynamicbase -Wl,--nxcompat -Wl,--disable-no-seh -Wl,--disable-tsaware)
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
    if(ARG_DIR STREQUAL TESSARY_APP_DIR)
        set_property(GLOBAL APPEND PROPERTY TESSARY_SHIPPED ${name})
    endif()
endfunction()

# tessary_ship_program(NAME): the executable NAME, which calls plug-ins, goes into the application folder.
function(tessary_ship_program name)
    set_target_properties(${name} PROPERTIES RUNTIME_OUTPUT_DIRECTORY "${TESSARY_APP_DIR}")
    # Big pictures need more than the lower half of the address space, and nested plug-in calls more than the usual
    # stack. Old plug-ins that unpack themselves run code from data pages: where the system leaves it to programs, let
    # them.
    target_link_options(${name} PRIVATE
        -municode -Wl,--large-address-aware -Wl,--stack,4194304 -Wl,--disable-nxcompat)
    set_property(GLOBAL APPEND PROPERTY TESSARY_SHIPPED ${name})
endfunction()
