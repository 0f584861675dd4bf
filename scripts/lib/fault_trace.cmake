# Included by the copy that faults.py makes: its test programs tell which test is under way.
cmake_language(DEFER DIRECTORY "${CMAKE_SOURCE_DIR}" CALL fault_trace)
function(fault_trace)
    add_library(fault_trace OBJECT "${CMAKE_SOURCE_DIR}/scripts/lib/fault_trace.cpp")
    target_link_libraries(fault_trace PRIVATE tessary_options gtest)
    target_sources(gtest_main INTERFACE $<TARGET_OBJECTS:fault_trace>)
endfunction()
