# What every target of this project has in common.
include(GenerateExportHeader)
include(GNUInstallDirs)
# Below /usr the loader finds public libraries itself.
set(SURROGATE_LIBRARY_RUN_PATH "$ORIGIN")
if(CMAKE_INSTALL_PREFIX STREQUAL "/usr")
    set(SURROGATE_LIBRARY_RUN_PATH "")
endif()
set(SURROGATE_INSTALL_HEADERDIR "${CMAKE_INSTALL_INCLUDEDIR}/surrogatemodel")

# For our own code only: an INTERFACE target, so that a project that adds this one as a folder
# keeps its own rules.
if(NOT TARGET surrogate_warnings)
    add_library(surrogate_warnings INTERFACE)
    add_library(mirel::warnings ALIAS surrogate_warnings)
    target_compile_options(surrogate_warnings INTERFACE
        -Wall -Wextra -Wpedantic -Wnon-virtual-dtor -Woverloaded-virtual -Werror
        # Not plain -Wshadow: fields carry no prefix, so that arguments may well bear their names.
        # GCC 12 takes the small-object buffers of boost::function for uninitialised reads.
        $<$<CXX_COMPILER_ID:GNU>:-Wshadow=local -Wno-uninitialized -Wno-maybe-uninitialized>
        # What the macros of VTK and GoogleTest expand to.
        $<$<CXX_COMPILER_ID:Clang>:-Wno-extra-semi -Wno-gnu-zero-variadic-macro-arguments>
        # Results are the same bits whatever the processor can fuse.
        -ffp-contract=off)
endif()

if(PROJECT_IS_TOP_LEVEL)
    # Half a hundred programs and libraries are linked; any linker does, a fast one saves a minute.
    find_program(SURROGATE_MOLD mold)
    if(SURROGATE_MOLD)
        add_link_options(-fuse-ld=mold)
    endif()
    find_program(SURROGATE_CCACHE ccache)
    if(SURROGATE_CCACHE AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
        # Paths relative to the source folder: a second clone finds what the first one compiled.
        set(CMAKE_CXX_COMPILER_LAUNCHER "${CMAKE_COMMAND}" -E env
            "CCACHE_BASEDIR=${PROJECT_SOURCE_DIR}" CCACHE_NOHASHDIR=1
            CCACHE_SLOPPINESS=pch_defines,time_macros "${SURROGATE_CCACHE}")
    endif()
    set(CMAKE_RUNTIME_OUTPUT_DIRECTORY "${PROJECT_BINARY_DIR}/bin")
    set(CMAKE_LIBRARY_OUTPUT_DIRECTORY "${PROJECT_BINARY_DIR}/lib")
endif()

# surrogate_add_library(TARGET ALIAS INCLUDE_ROOT source...): a shared library with hidden default
# visibility and an export header <TARGET/Export.h> (macro TARGET_EXPORT, in capitals).
# INCLUDE_ROOT is the folder that includes are written from.
function(surrogate_add_library target alias include_root)
    add_library(${target} SHARED ${ARGN})
    add_library(${alias} ALIAS ${target})
    set(generated "${PROJECT_BINARY_DIR}/generated/${target}")
    generate_export_header(${target} EXPORT_FILE_NAME "${generated}/${target}/Export.h")
    target_include_directories(${target} PUBLIC
        "$<BUILD_INTERFACE:${include_root}>" "$<BUILD_INTERFACE:${generated}>")
    target_compile_features(${target} PUBLIC cxx_std_17)
    target_link_libraries(${target} PRIVATE mirel::warnings)
    string(REGEX REPLACE ".*::" "" name_in_namespace "${alias}")
    set_target_properties(${target} PROPERTIES
        CXX_EXTENSIONS OFF
        CXX_VISIBILITY_PRESET hidden
        VISIBILITY_INLINES_HIDDEN ON
        EXPORT_NAME "${name_in_namespace}"
        INSTALL_RPATH "${SURROGATE_LIBRARY_RUN_PATH}"
        VERSION ${PROJECT_VERSION}
        SOVERSION ${PROJECT_VERSION_MAJOR})
endfunction()

# surrogate_install_library(TARGET SET header...): a library for other projects, with those of its
# headers that they may include. SET is one of the export sets in cmake/InstallPackage.cmake.
function(surrogate_install_library target set)
    # Includes are written from the folder above that of the library.
    cmake_path(GET CMAKE_CURRENT_SOURCE_DIR PARENT_PATH include_root)
    get_target_property(type ${target} TYPE)
    if(type STREQUAL "INTERFACE_LIBRARY")
        target_sources(${target} INTERFACE FILE_SET HEADERS BASE_DIRS "${include_root}" FILES ${ARGN})
    else()
        set(generated "${PROJECT_BINARY_DIR}/generated/${target}")
        target_sources(${target} PUBLIC FILE_SET HEADERS BASE_DIRS "${include_root}" "${generated}"
            FILES ${ARGN} "${generated}/${target}/Export.h")
    endif()
    # For the API reference.
    list(TRANSFORM ARGN PREPEND "${CMAKE_CURRENT_SOURCE_DIR}/" OUTPUT_VARIABLE public_headers)
    set_property(GLOBAL APPEND PROPERTY SURROGATE_PUBLIC_HEADERS ${public_headers})
    # Each header compiles alone and without a warning: target all_verify_interface_header_sets.
    set_target_properties(${target} PROPERTIES VERIFY_INTERFACE_HEADER_SETS ON)
    set(is_verified "$<STREQUAL:$<TARGET_PROPERTY:NAME>,${target}_verify_interface_header_sets>")
    target_compile_options(${target} INTERFACE
        "$<BUILD_INTERFACE:$<${is_verified}:-Wall;-Wextra;-Wpedantic;-Werror>>")
    if(set STREQUAL "fitting")
        set(component fitting)
    else()
        set(component libraries)
    endif()
    install(TARGETS ${target} EXPORT ${set}
        LIBRARY DESTINATION "${CMAKE_INSTALL_LIBDIR}"
            COMPONENT ${component} NAMELINK_COMPONENT development
        FILE_SET HEADERS DESTINATION "${SURROGATE_INSTALL_HEADERDIR}" COMPONENT development)
endfunction()

# surrogate_install_program(TARGET library...): a program, and the libraries that only it uses.
# They find each other wherever the whole is moved to.
function(surrogate_install_program target)
    set(private "${CMAKE_INSTALL_FULL_LIBDIR}/surrogatemodel")
    cmake_path(RELATIVE_PATH private BASE_DIRECTORY "${CMAKE_INSTALL_FULL_BINDIR}"
        OUTPUT_VARIABLE relative_libdir)
    set(public "${SURROGATE_LIBRARY_RUN_PATH}")
    set_target_properties(${target} PROPERTIES
        INSTALL_RPATH "$ORIGIN/${relative_libdir};$<$<BOOL:${public}>:$ORIGIN/${relative_libdir}/..>")
    set_target_properties(${ARGN} PROPERTIES
        INSTALL_RPATH "$ORIGIN;$<$<BOOL:${public}>:$ORIGIN/..>")
    install(TARGETS ${target} ${ARGN}
        RUNTIME COMPONENT programs
        LIBRARY DESTINATION "${CMAKE_INSTALL_LIBDIR}/surrogatemodel" COMPONENT programs NAMELINK_SKIP)
endfunction()

# surrogate_precompile(TARGET header...): headers of others that most of the target's files read, and
# that take seconds each. In the sanitizer build only: the release build finds out a file of ours that
# lacks an include.
function(surrogate_precompile target)
    # A plain > would end the generator expression.
    list(TRANSFORM ARGN REPLACE "<(.+)>" "$<$<CONFIG:Asan>:<\\1$<ANGLE-R>>")
    target_precompile_headers(${target} PRIVATE ${ARGN})
endfunction()

# surrogate_add_test(NAME SOURCES source... LIBRARIES library... [PRECOMPILE header...] [LABEL label]
# [OWN_MAIN]): a test program NAME; each of its suites becomes a CTest test "NAME.Suite", in the
# sanitizer build each four of them "asan.NAME.Suite,Suite,Suite,Suite". PRECOMPILE:
# headers of others that most of the sources read. OWN_MAIN: one of the sources brings main().
function(surrogate_add_test name)
    if(NOT BUILD_TESTING)
        return()
    endif()
    cmake_parse_arguments(PARSE_ARGV 1 arg "OWN_MAIN" "LABEL" "SOURCES;LIBRARIES;PRECOMPILE;ENVIRONMENT")
    add_executable(${name} ${arg_SOURCES})
    set_target_properties(${name} PROPERTIES CXX_EXTENSIONS OFF)
    target_compile_features(${name} PRIVATE cxx_std_17)
    # Unoptimised: compiling tests takes longer than running them. No header of ours is precompiled:
    # one that lacks an include is found out where the libraries are compiled.
    target_compile_options(${name} PRIVATE $<$<NOT:$<CONFIG:Debug>>:-O0>
        # Checks of undefined behaviour, and the counters of the fuzzers, are for the libraries: in
        # tests they double the compilation.
        $<$<CONFIG:Asan>:-fno-sanitize=undefined,fuzzer-no-link>)
    target_precompile_headers(${name} PRIVATE <gtest/gtest.h> ${arg_PRECOMPILE})
    target_link_libraries(${name} PRIVATE ${arg_LIBRARIES} mirel::warnings GTest::gtest)
    # What tests of several rooms share stands in tests/ of their component.
    target_include_directories(${name} PRIVATE "${CMAKE_CURRENT_SOURCE_DIR}/tests")
    if(NOT arg_OWN_MAIN)
        target_link_libraries(${name} PRIVATE GTest::gtest_main)
    endif()
    if(NOT arg_LABEL)
        set(arg_LABEL ${name})
    endif()
    surrogate_test_environment(environment ${arg_ENVIRONMENT})
    set(suites "${CMAKE_CURRENT_BINARY_DIR}/${name}_suites.cmake")
    add_custom_command(TARGET ${name} POST_BUILD
        COMMAND "${CMAKE_COMMAND}" -E env ${environment} "${CMAKE_COMMAND}"
            -D "PROGRAM=$<TARGET_FILE:${name}>" -D "PREFIX=${SURROGATE_TEST_PREFIX}${name}."
            # A program with sanitizers takes up to 0.13 s to start, longer than most suites.
            -D "TOGETHER=$<IF:$<CONFIG:Asan>,4,1>" -D "OUTPUT=${suites}" -P "${PROJECT_SOURCE_DIR}/cmake/ListSuites.cmake"
        BYPRODUCTS "${suites}" VERBATIM)
    set(registered "${CMAKE_CURRENT_BINARY_DIR}/${name}_registered.cmake")
    file(WRITE "${registered}" "if(EXISTS [=[${suites}]=])
    include([=[${suites}]=])
    set_tests_properties(\${SUITES} PROPERTIES TIMEOUT 300 LABELS [=[${arg_LABEL}]=]
        ENVIRONMENT [=[${environment}]=])
else()
    add_test([=[${SURROGATE_TEST_PREFIX}${name}_NOT_BUILT]=] ${name}_NOT_BUILT)
endif()
")
    set_property(DIRECTORY APPEND PROPERTY TEST_INCLUDE_FILES "${registered}")
endfunction()

# What every test runs with: no display, the suppressions of leaks that are not ours, and ten stack
# frames for each allocation: recording the usual thirty takes a tenth of the time of programs that
# allocate much.
function(surrogate_test_environment result)
    set(${result}
        "QT_QPA_PLATFORM=offscreen"
        "LSAN_OPTIONS=suppressions=${PROJECT_SOURCE_DIR}/cmake/leaks.supp:print_suppressions=0"
        "ASAN_OPTIONS=malloc_context_size=10"
        "UBSAN_OPTIONS=print_stacktrace=1"
        ${ARGN}
        PARENT_SCOPE)
endfunction()
