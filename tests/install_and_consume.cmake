# Installs the build into a scratch prefix, then builds and runs consumers against the installed
# tree only: a C and a C++ one through find_package(QZMath), the C one through pkg-config.
# With PYTHON (an interpreter with numpy) the installed Python package must import from the prefix
# and load the prefix's library.
# Inputs: BUILD_DIR, WORK_DIR, CONSUMER_SRC, C_COMPILER, CXX_COMPILER, PYTHON, PYTHON_DIR.
file(REMOVE_RECURSE ${WORK_DIR})
set(prefix ${WORK_DIR}/prefix)
execute_process(COMMAND ${CMAKE_COMMAND} --install ${BUILD_DIR} --prefix ${prefix}
  OUTPUT_QUIET COMMAND_ERROR_IS_FATAL ANY)

execute_process(COMMAND ${CMAKE_COMMAND} -S ${CONSUMER_SRC} -B ${WORK_DIR}/build
  -DCMAKE_PREFIX_PATH=${prefix} -DCMAKE_C_COMPILER=${C_COMPILER} -DCMAKE_CXX_COMPILER=${CXX_COMPILER}
  COMMAND_ERROR_IS_FATAL ANY)
execute_process(COMMAND ${CMAKE_COMMAND} --build ${WORK_DIR}/build COMMAND_ERROR_IS_FATAL ANY)
execute_process(COMMAND ${WORK_DIR}/build/consumer COMMAND_ERROR_IS_FATAL ANY)
execute_process(COMMAND ${WORK_DIR}/build/consumer_cpp COMMAND_ERROR_IS_FATAL ANY)

find_program(PKG_CONFIG pkg-config)
if(PKG_CONFIG)
  file(GLOB_RECURSE pcs ${prefix}/*/qzmath.pc)
  list(GET pcs 0 pc)
  get_filename_component(pcdir ${pc} DIRECTORY)
  set(ENV{PKG_CONFIG_PATH} ${pcdir})
  execute_process(COMMAND ${PKG_CONFIG} --cflags --libs qzmath OUTPUT_VARIABLE flags
    OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
  separate_arguments(flags UNIX_COMMAND "${flags}")
  execute_process(COMMAND ${C_COMPILER} -std=c99 ${CONSUMER_SRC}/consumer.c ${flags}
    -Wl,-rpath,${pcdir}/.. -o ${WORK_DIR}/consumer_pc COMMAND_ERROR_IS_FATAL ANY)
  execute_process(COMMAND ${WORK_DIR}/consumer_pc COMMAND_ERROR_IS_FATAL ANY)
endif()

if(PYTHON)
  set(ENV{PYTHONPATH} ${prefix}/${PYTHON_DIR})
  unset(ENV{QZMATH_LIB})
  execute_process(COMMAND ${PYTHON} -c "import qzmath; print(qzmath.__file__); print(qzmath.LIBRARY_PATH)"
    WORKING_DIRECTORY ${WORK_DIR} OUTPUT_VARIABLE out OUTPUT_STRIP_TRAILING_WHITESPACE
    COMMAND_ERROR_IS_FATAL ANY)
  string(REPLACE "\n" ";" out "${out}")
  foreach(path ${out})
    file(REAL_PATH ${path} real)
    file(REAL_PATH ${prefix} real_prefix)
    string(FIND "${real}" "${real_prefix}/" at)
    if(NOT at EQUAL 0)
      message(FATAL_ERROR "the installed Python package uses ${path}, outside ${prefix}")
    endif()
  endforeach()
endif()
