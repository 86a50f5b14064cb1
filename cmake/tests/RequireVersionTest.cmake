# cmake -D FOLDER=... -P RequireVersionTest.cmake: which versions surrogate_require_version() accepts,
# and that every package is asked for with a version. FOLDER is for files.
cmake_minimum_required(VERSION 3.25)
set(root "${CMAKE_CURRENT_LIST_DIR}/../..")

function(expect outcome floor line)
    file(WRITE "${FOLDER}/header.h" "#define OTHER \"9.9\"\n${line}\n")
    file(WRITE "${FOLDER}/ask.cmake" "include([=[${root}/cmake/RequireVersion.cmake]=])
surrogate_require_version(Part ${floor} [=[${FOLDER}/header.h]=] PART_VERSION)\n")
    execute_process(COMMAND "${CMAKE_COMMAND}" -P "${FOLDER}/ask.cmake"
        RESULT_VARIABLE code ERROR_VARIABLE errors)
    if((code EQUAL 0 AND outcome STREQUAL refused) OR (NOT code EQUAL 0 AND outcome STREQUAL taken))
        message(FATAL_ERROR "not ${outcome}: floor ${floor}, ${line}\n${errors}")
    endif()
endfunction()

expect(taken 1.1.4 "#define PART_VERSION \"1.1.4\"")
expect(taken 1.1.4 "#define PART_VERSION \"1.10\"")
expect(refused 1.1.4 "#define PART_VERSION \"1.1.3\"")
expect(taken 1.4.2 "#define PART_VERSION 0x142")
expect(refused 1.4.2 "#define PART_VERSION 0x141")
expect(refused 0.1 "#define PART_VERSION unknown")
expect(refused 0.1 "")

# These have no versions to ask for.
set(unversioned LAPACK rapidcheck)
file(GLOB_RECURSE lists "${root}/platform/*CMakeLists.txt" "${root}/application/*CMakeLists.txt"
    "${root}/analyzer/*CMakeLists.txt" "${root}/bench/*CMakeLists.txt")
foreach(list IN LISTS lists ITEMS "${root}/CMakeLists.txt")
    file(STRINGS "${list}" calls REGEX "find_package\\(")
    foreach(call IN LISTS calls)
        string(REGEX MATCH "find_package\\(([A-Za-z0-9_]+)" begin "${call}")
        if(NOT CMAKE_MATCH_1 IN_LIST unversioned AND NOT call MATCHES "find_package\\([A-Za-z0-9_]+ [0-9]")
            message(FATAL_ERROR "${list}: ${call}: no version")
        endif()
    endforeach()
endforeach()
