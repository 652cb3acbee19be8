# How every target of the project is made: one function each for a library, a program, a test and a benchmark.

include(GNUInstallDirs)

add_library(zentrak_flags INTERFACE)
target_compile_options(zentrak_flags INTERFACE -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor
    -Woverloaded-virtual -ffp-contract=off)
# Bounds of containers are checked, too.
target_compile_definitions(zentrak_flags INTERFACE _GLIBCXX_ASSERTIONS)
# No trace of where the sources were: two clones give the same program. ccache may pass paths relative to the build.
file(RELATIVE_PATH from_build ${CMAKE_BINARY_DIR} ${PROJECT_SOURCE_DIR}/CMakeLists.txt)
get_filename_component(from_build "${from_build}" DIRECTORY)
target_compile_options(zentrak_flags INTERFACE
    -ffile-prefix-map=${PROJECT_SOURCE_DIR}/= -ffile-prefix-map=${from_build}/=)
target_link_options(zentrak_flags INTERFACE -Wl,-z,relro,-z,now $<$<STREQUAL:$<TARGET_PROPERTY:TYPE>,EXECUTABLE>:-pie>)
if(ZENTRAK_WERROR)
    target_compile_options(zentrak_flags INTERFACE -Werror)
endif()
if(ZENTRAK_SANITIZE)
    target_compile_options(zentrak_flags INTERFACE -fsanitize=${ZENTRAK_SANITIZE} -fno-sanitize-recover=all
        -fno-omit-frame-pointer)
    target_link_options(zentrak_flags INTERFACE -fsanitize=${ZENTRAK_SANITIZE})
endif()

find_package(PkgConfig REQUIRED)

# zentrak_library(NAME SOURCES file... [LINK target...] [PRIVATE_LINK target...])
#   The library zentrak::NAME. LINK names what its public headers need, PRIVATE_LINK what only its sources need.
function(zentrak_library name)
    cmake_parse_arguments(ARG "" "" "SOURCES;LINK;PRIVATE_LINK" ${ARGN})
    add_library(zentrak_${name} ${ARG_SOURCES})
    add_library(zentrak::${name} ALIAS zentrak_${name})
    set_target_properties(zentrak_${name} PROPERTIES
        EXPORT_NAME ${name} VERSION ${PROJECT_VERSION} SOVERSION ${PROJECT_VERSION_MAJOR})
    if(BUILD_SHARED_LIBS)
        # They lie side by side, and find each other wherever they are installed.
        set_target_properties(zentrak_${name} PROPERTIES INSTALL_RPATH "$ORIGIN")
    endif()
    target_compile_features(zentrak_${name} PUBLIC cxx_std_20)
    target_include_directories(zentrak_${name} PUBLIC
        $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/include> $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}/zentrak>)
    # What uses the installed libraries keeps its assertions, too: some are in inline functions of the headers.
    target_compile_options(zentrak_${name} INTERFACE $<INSTALL_INTERFACE:-UNDEBUG>)
    target_link_libraries(zentrak_${name} PUBLIC ${ARG_LINK}
        PRIVATE $<BUILD_INTERFACE:zentrak_flags> ${ARG_PRIVATE_LINK})
endfunction()

# zentrak_program(NAME SOURCES file... [LINK target...] [INSTALL])
#   The executable NAME. With INSTALL it is for users, too: it goes to bin/, so its name should start with "zentrak-".
function(zentrak_program name)
    cmake_parse_arguments(ARG "INSTALL" "" "SOURCES;LINK" ${ARGN})
    add_executable(${name} ${ARG_SOURCES})
    target_link_libraries(${name} PRIVATE zentrak_flags ${ARG_LINK})
    if(ARG_INSTALL)
        zentrak_install_program(${name} ${CMAKE_INSTALL_BINDIR})
    endif()
endfunction()

# zentrak_install_program(NAME FOLDER)
#   Installs the executable NAME to FOLDER, below the prefix, where it finds our shared libraries.
function(zentrak_install_program name folder)
    if(BUILD_SHARED_LIBS)
        file(RELATIVE_PATH libraries ${CMAKE_INSTALL_PREFIX}/${folder} ${CMAKE_INSTALL_FULL_LIBDIR})
        set_target_properties(${name} PROPERTIES INSTALL_RPATH "$ORIGIN/${libraries}")
    endif()
    install(TARGETS ${name} RUNTIME DESTINATION ${folder})
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
        "LSAN_OPTIONS=suppressions=${CMAKE_SOURCE_DIR}/tests/lsan.supp:print_suppressions=0;UBSAN_OPTIONS=print_stacktrace=1;TSAN_OPTIONS=suppressions=${CMAKE_SOURCE_DIR}/tests/tsan.supp;ALSOFT_DRIVERS=null")
endfunction()

# zentrak_bench(NAME SOURCES file... [LINK target...] [SMOKE argument...])
#   The benchmark executable NAME, and a test that runs it as shortly as it can on a virtual display: it shows that the
#   benchmark still works, and measures nothing. SMOKE gives the arguments for that to a program that has a main of its
#   own instead of Google Benchmark's.
function(zentrak_bench name)
    cmake_parse_arguments(ARG "" "" "SOURCES;LINK;SMOKE" ${ARGN})
    if(NOT ARG_SMOKE)
        set(ARG_SMOKE --benchmark_min_time=0)
    endif()
    add_executable(${name} ${ARG_SOURCES})
    target_link_libraries(${name} PRIVATE zentrak_flags ${ARG_LINK} benchmark::benchmark)
    add_test(NAME ${name}
        COMMAND ${CMAKE_SOURCE_DIR}/tests/with_display $<TARGET_FILE:${name}> ${ARG_SMOKE}
        WORKING_DIRECTORY ${CMAKE_SOURCE_DIR})
    set_tests_properties(${name} PROPERTIES LABELS bench TIMEOUT 300 ENVIRONMENT ALSOFT_DRIVERS=null)
endfunction()
