# GoogleTest is built from the source that the machine's package installs, with the compiler of the preset:
# a ready-made binary would fit neither Windows nor the sanitizers.
set(TESSARY_GTEST_SOURCE "/usr/src/googletest" CACHE PATH "Source folder of GoogleTest")
set(INSTALL_GTEST OFF CACHE BOOL "" FORCE)
set(BUILD_GMOCK OFF CACHE BOOL "" FORCE)
add_subdirectory("${TESSARY_GTEST_SOURCE}" "${CMAKE_BINARY_DIR}/googletest" EXCLUDE_FROM_ALL SYSTEM)
if(NOT WIN32)
    target_compile_options(gtest PRIVATE -fsanitize=address,undefined)
endif()

# tessary_add_test(NAME sources… [LINK libraries…]): a test program that ctest runs, under Wine when
# it is a Windows one.
function(tessary_add_test name)
    cmake_parse_arguments(ARG "" "" "LINK" ${ARGN})
    add_executable(${name} ${ARG_UNPARSED_ARGUMENTS})
    target_link_libraries(${name} PRIVATE tessary_options gtest_main ${ARG_LINK})
    target_compile_options(${name} PRIVATE -O1)  # they compile longer than they run
    set_target_properties(${name} PROPERTIES RUNTIME_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/tests")
    if(WIN32 AND CMAKE_CROSSCOMPILING)
        add_test(NAME ${name} COMMAND "${CMAKE_SOURCE_DIR}/scripts/wine.sh" $<TARGET_FILE:${name}>)
    else()
        add_test(NAME ${name} COMMAND ${name})
    endif()
endfunction()
