# The version script for a list that spans two releases: a shared library linked with it exports
# each function under its release's node (the later node chained to the earlier, as the linker
# accepts it), keeps undeclared functions local, and a list that misses a declared function or
# names an undeclared one stops with a message naming it. Inputs: CC, WORK.
include(${CMAKE_CURRENT_LIST_DIR}/../cmake/QZPublicApi.cmake)
find_program(NM NAMES nm REQUIRED)
file(REMOVE_RECURSE ${WORK})
file(WRITE ${WORK}/since.txt "# test list\nqz_old 1.0\nqz_new 1.1\nqz_newer 1.2\n")
qz_write_version_script(${WORK}/lib.map ${WORK}/since.txt qz_old qz_new qz_newer)
file(WRITE ${WORK}/lib.c "int qz_old(void) { return 1; }\nint qz_new(void) { return 2; }\n"
     "int qz_newer(void) { return 3; }\nint qz_hidden(void) { return 4; }\n")
execute_process(COMMAND ${CC} -shared -fPIC -Wl,--version-script=${WORK}/lib.map ${WORK}/lib.c
                -o ${WORK}/lib.so COMMAND_ERROR_IS_FATAL ANY)
execute_process(COMMAND ${NM} -D --defined-only --with-symbol-versions ${WORK}/lib.so
                OUTPUT_VARIABLE syms COMMAND_ERROR_IS_FATAL ANY)
foreach(want "qz_old@@QZMATH_1.0" "qz_new@@QZMATH_1.1" "qz_newer@@QZMATH_1.2")
  string(FIND "${syms}" " ${want}\n" at)
  if(at LESS 0)
    message(SEND_ERROR "expected ${want} in the export table:\n${syms}")
  endif()
endforeach()
if(syms MATCHES "qz_hidden")
  message(SEND_ERROR "an unlisted function is exported:\n${syms}")
endif()
file(READ ${WORK}/lib.map map)
string(FIND "${map}" "    qz_newer;\n} QZMATH_1.1;\n" at)
if(at LESS 0)
  message(SEND_ERROR "QZMATH_1.2 does not chain to QZMATH_1.1:\n${map}")
endif()

# A list that lacks a declared function, or names one nothing declares.
file(WRITE ${WORK}/bad.cmake "include(${CMAKE_CURRENT_LIST_DIR}/../cmake/QZPublicApi.cmake)\n"
     "qz_write_version_script(${WORK}/bad.map ${WORK}/since.txt qz_old qz_new qz_declared)\n")
execute_process(COMMAND ${CMAKE_COMMAND} -P ${WORK}/bad.cmake RESULT_VARIABLE rc
                ERROR_VARIABLE err)
if(rc EQUAL 0 OR NOT err MATCHES "not listed: qz_declared"
   OR NOT err MATCHES "declared in no public header: qz_newer")
  message(SEND_ERROR "an incomplete list was not refused by name (${rc}):\n${err}")
endif()
