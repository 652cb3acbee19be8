# How every target of the project is made: one function each for a library, a program, a test and a benchmark.

add_library(zentrak_flags INTERFACE)
target_include_directories(zentrak_flags INTERFACE ${CMAKE_SOURCE_DIR}/include)
target_compile_options(zentrak_flags INTERFACE -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor
    -Woverloaded-virtual -ffp-contract=off)
if(ZENTRAK_WERROR)
    target_compile_options(zentrak_flags INTERFACE -Werror)
endif()
if(ZENTRAK_SANITIZE)
    target_compile_options(zentrak_flags INTERFACE -fsanitize=address,undefined -fno-sanitize-recover=all
        -fno-omit-frame-pointer)
    target_link_options(zentrak_flags INTERFACE -fsanitize=address,undefined)
endif()

find_package(PkgConfig REQUIRED)

# zentrak_library(NAME SOURCES file... [LINK target...] [PRIVATE_LINK target...])
#   The library zentrak::NAME. LINK names what its public headers need, PRIVATE_LINK what only its sources need.
function(zentrak_library name)
    cmake_parse_arguments(ARG "" "" "SOURCES;LINK;PRIVATE_LINK" ${ARGN})
    add_library(zentrak_${name} STATIC ${ARG_SOURCES})
    add_library(zentrak::${name} ALIAS zentrak_${name})
    target_link_libraries(zentrak_${name} PUBLIC zentrak_flags ${ARG_LINK} PRIVATE ${ARG_PRIVATE_LINK})
endfunction()

# zentrak_program(NAME SOURCES file... [LINK target...])
#   The executable NAME.
function(zentrak_program name)
    cmake_parse_arguments(ARG "" "" "SOURCES;LINK" ${ARGN})
    add_executable(${name} ${ARG_SOURCES})
    target_link_libraries(${name} PRIVATE zentrak_flags ${ARG_LINK})
endfunction()

# zentrak_test(NAME SOURCES file... [LINK target...] [GL] [TIMEOUT seconds])
#   The test executable NAME on GoogleTest. With GL it runs on a virtual display of its own, is labelled gl, and has
#   input.h to send keys and mouse events with.
function(zentrak_test name)
    cmake_parse_arguments(ARG "GL" "TIMEOUT" "SOURCES;LINK" ${ARGN})
    if(NOT ARG_TIMEOUT)
        set(ARG_TIMEOUT 600)
    endif()
    add_executable(${name} ${ARG_SOURCES})
    target_link_libraries(${name} PRIVATE zentrak_flags zentrak_test_support ${ARG_LINK} GTest::gtest_main)
    if(ARG_GL)
        target_link_libraries(${name} PRIVATE zentrak_test_input)
        if(ZENTRAK_SANITIZE)
            target_sources(${name} PRIVATE ${CMAKE_SOURCE_DIR}/tests/support/keep_loaded.cpp)
        endif()
        add_test(NAME ${name} COMMAND ${CMAKE_SOURCE_DIR}/tests/with_display $<TARGET_FILE:${name}>)
        set_tests_properties(${name} PROPERTIES LABELS gl RUN_SERIAL ON)
    else()
        add_test(NAME ${name} COMMAND ${name})
        set_tests_properties(${name} PROPERTIES LABELS cpu)
    endif()
    set_tests_properties(${name} PROPERTIES TIMEOUT ${ARG_TIMEOUT} ENVIRONMENT
        "LSAN_OPTIONS=suppressions=${CMAKE_SOURCE_DIR}/tests/lsan.supp:print_suppressions=0;UBSAN_OPTIONS=print_stacktrace=1;ALSOFT_DRIVERS=null")
endfunction()

# zentrak_bench(NAME SOURCES file... [LINK target...])
#   The benchmark executable NAME on Google Benchmark.
function(zentrak_bench name)
    cmake_parse_arguments(ARG "" "" "SOURCES;LINK" ${ARGN})
    add_executable(${name} ${ARG_SOURCES})
    target_link_libraries(${name} PRIVATE zentrak_flags ${ARG_LINK} benchmark::benchmark)
endfunction()
