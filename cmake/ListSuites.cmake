# cmake -D PROGRAM=... -D PREFIX=... -D TOGETHER=... -D OUTPUT=... -P ListSuites.cmake: writes what CTest
# includes, one test for each TOGETHER suites of a GoogleTest program, and their names as SUITES. A process
# for each of thousands of tests would spend its time on loading libraries.
execute_process(COMMAND "${PROGRAM}" --gtest_list_tests
    OUTPUT_VARIABLE listing COMMAND_ERROR_IS_FATAL ANY)
string(REGEX MATCHALL "\n[^ \n]+\\." suites "\n${listing}")
list(TRANSFORM suites STRIP)
list(TRANSFORM suites REPLACE "\\.$" "")
set(names "")
set(tests "")
list(LENGTH suites count)
math(EXPR last "${count} - 1")
foreach(first RANGE 0 ${last} ${TOGETHER})
    list(SUBLIST suites ${first} ${TOGETHER} group)
    list(JOIN group "," name)
    list(JOIN group ".*:" filter)
    list(APPEND names "${PREFIX}${name}")
    string(APPEND tests "add_test([=[${PREFIX}${name}]=] [=[${PROGRAM}]=] [=[--gtest_filter=${filter}.*]=])\n")
endforeach()
file(WRITE "${OUTPUT}" "${tests}set(SUITES [=[${names}]=])\n")
