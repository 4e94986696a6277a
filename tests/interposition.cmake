# Runs the interposition program with and without foreign definitions and compares the results.
# Inputs: OWN, FOREIGN.
execute_process(COMMAND ${OWN} OUTPUT_VARIABLE own COMMAND_ERROR_IS_FATAL ANY)
execute_process(COMMAND ${FOREIGN} OUTPUT_VARIABLE foreign COMMAND_ERROR_IS_FATAL ANY)
# The foreign definitions must really be visible to the dynamic linker, or the test proves nothing.
execute_process(COMMAND nm -D --defined-only ${FOREIGN} OUTPUT_VARIABLE syms COMMAND_ERROR_IS_FATAL ANY)
foreach(name eig Cholesky ValueToTarget VMV relative_rotation axis_angle_to_rotmat)
  if(NOT syms MATCHES "[TW] ${name}\n")
    message(FATAL_ERROR "the foreign program does not export ${name}")
  endif()
endforeach()
if(NOT own STREQUAL foreign)
  message(FATAL_ERROR "results change when the process defines the library's names:\n"
                      "--- own\n${own}--- foreign\n${foreign}")
endif()
string(LENGTH "${own}" n)
message(STATUS "identical results (${n} characters)")
