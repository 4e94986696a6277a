# The version lives in project(VERSION) alone. Checks that the Python package spells it nowhere
# and that every place that reports it says the same: setup.py's metadata, the package's
# __version__ and the loaded library's QZ_Version. Inputs: VERSION, SOURCE_DIR, LIB, PYTHON.
# The package's sources (not what a build or an install wrote beside them, under python/build/).
file(GLOB files ${SOURCE_DIR}/python/*.py ${SOURCE_DIR}/python/*.toml ${SOURCE_DIR}/python/*.cfg)
file(GLOB_RECURSE more ${SOURCE_DIR}/python/qzmath/*.py ${SOURCE_DIR}/python/tests/*.py
     ${SOURCE_DIR}/python/examples/*.py)
list(APPEND files ${more})
string(REPLACE "." "[.]" pattern "${VERSION}")
foreach(f ${files})
  file(STRINGS ${f} hits REGEX "(^|[^0-9.])${pattern}($|[^0-9.])")
  if(hits)
    message(SEND_ERROR "${f} spells out the version ${VERSION}; take it from project() instead")
  endif()
endforeach()

if(PYTHON)
  execute_process(COMMAND ${PYTHON} setup.py --version WORKING_DIRECTORY ${SOURCE_DIR}/python
    OUTPUT_VARIABLE out ERROR_QUIET COMMAND_ERROR_IS_FATAL ANY)
  string(REGEX MATCH "[^\n]+\n?$" setup_version "${out}")
  string(STRIP "${setup_version}" setup_version)
  set(ENV{QZMATH_LIB} ${LIB})
  set(ENV{PYTHONPATH} ${SOURCE_DIR}/python)
  set(ENV{PYTHONDONTWRITEBYTECODE} 1)
  execute_process(COMMAND ${PYTHON} -c
    "import qzmath; print(qzmath.__version__, qzmath.LIBRARY_VERSION)"
    OUTPUT_VARIABLE out OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
  foreach(pair "setup.py --version:${setup_version}" "qzmath.__version__ and QZ_Version:${out}")
    string(REGEX REPLACE "^([^:]*):(.*)$" "\\1;\\2" pair "${pair}")
    list(GET pair 0 what)
    list(GET pair 1 got)
    if(NOT got STREQUAL VERSION AND NOT got STREQUAL "${VERSION} ${VERSION}")
      message(SEND_ERROR "${what} gives '${got}', project() says ${VERSION}")
    endif()
  endforeach()
endif()
