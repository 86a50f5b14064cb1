# cmake -D PROGRAM=... -D PREFIX=... -D OUTPUT=... -P ListSuites.cmake: writes what CTest includes, one
# test for each suite of a GoogleTest program, and their names as SUITES. A process for each of
# thousands of tests would spend its time on loading libraries.
execute_process(COMMAND "${PROGRAM}" --gtest_list_tests
    OUTPUT_VARIABLE listing COMMAND_ERROR_IS_FATAL ANY)
string(REGEX MATCHALL "\n[^ \n]+\\." suites "\n${listing}")
set(names "")
set(tests "")
foreach(suite IN LISTS suites)
    string(STRIP "${suite}" suite)
    string(REGEX REPLACE "\\.$" "" name "${PREFIX}${suite}")
    list(APPEND names "${name}")
    string(APPEND tests "add_test([=[${name}]=] [=[${PROGRAM}]=] [=[--gtest_filter=${suite}*]=])\n")
endforeach()
file(WRITE "${OUTPUT}" "${tests}set(SUITES [=[${names}]=])\n")
