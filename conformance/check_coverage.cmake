# Every function declared with QZ_API in the covered headers has an entry in the runner's table.
# Inputs: RUNNER, EMULATOR (may be empty), INCLUDE_DIR, HEADERS.
execute_process(COMMAND ${EMULATOR} ${RUNNER} --list OUTPUT_VARIABLE listed
                COMMAND_ERROR_IS_FATAL ANY)
string(REPLACE "\n" ";" listed "${listed}")
include(${CMAKE_CURRENT_LIST_DIR}/../cmake/QZPublicApi.cmake)
set(headers "")
foreach(h ${HEADERS})
  list(APPEND headers ${INCLUDE_DIR}/${h})
endforeach()
qz_public_functions(declared ${headers})
set(missing ${declared})
list(REMOVE_ITEM missing ${listed})
if(missing)
  message(FATAL_ERROR "declared but without a conformance table entry: ${missing}")
endif()
