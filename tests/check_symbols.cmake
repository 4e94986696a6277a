# Compares the shared library's dynamic symbol table with the public headers, and checks its
# imports against the real-time promise. Inputs: LIB, STATIC_LIB, INCLUDE_DIR, GEN_INCLUDE_DIR,
# SRC_DIR, SINCE (abi/since.txt).
find_program(NM NAMES nm REQUIRED)
find_program(READELF NAMES readelf REQUIRED)
find_program(OBJDUMP NAMES objdump REQUIRED)
include(${CMAKE_CURRENT_LIST_DIR}/../cmake/QZPublicApi.cmake)

# Runs a tool (a failure stops the check) and sets var to its output as a list of lines.
function(qz_output_lines var)
  execute_process(COMMAND ${ARGN} OUTPUT_VARIABLE out COMMAND_ERROR_IS_FATAL ANY)
  string(REPLACE "\n" ";" out "${out}")
  set(${var} "${out}" PARENT_SCOPE)
endfunction()

# Functions declared in the public headers, the generated version header among them.
file(GLOB headers ${INCLUDE_DIR}/*.h ${GEN_INCLUDE_DIR}/*.h)
qz_public_functions(declared ${headers})
list(LENGTH declared n_declared)

# Functions the library exports, each under the node of the release that added it (SINCE).
qz_read_since(since ${SINCE} ${declared})
foreach(r ${since_RELEASES})
  foreach(f ${since_${r}})
    set(node_${f} QZMATH_${r})
  endforeach()
endforeach()
qz_output_lines(lines ${NM} -D --defined-only --with-symbol-versions ${LIB})
set(exported "")
foreach(l ${lines})
  if(l MATCHES "^[0-9a-f]+ [TWiV] ([^ @]+)(@*)([^ ]*)$")
    set(name ${CMAKE_MATCH_1})
    list(APPEND exported ${name})
    if(NOT CMAKE_MATCH_2 STREQUAL "@@" OR NOT CMAKE_MATCH_3 STREQUAL "${node_${name}}")
      message(SEND_ERROR "${name} is exported as '${CMAKE_MATCH_2}${CMAKE_MATCH_3}', not @@${node_${name}}")
    endif()
  elseif(l MATCHES "^[0-9a-f]+ [BDRGS] ([^ ]+)$")
    message(SEND_ERROR "exported data symbol: ${CMAKE_MATCH_1}")
  endif()
endforeach()
list(REMOVE_ITEM exported _init _fini)

set(extra ${exported})
list(REMOVE_ITEM extra ${declared})
set(missing ${declared})
list(REMOVE_ITEM missing ${exported})
if(extra)
  message(SEND_ERROR "exported but not declared in a public header: ${extra}")
endif()
if(missing)
  message(SEND_ERROR "declared but not exported: ${missing}")
endif()

# The library never reaches its own functions through the dynamic linker: a relocation against
# one of its exported names (a call through the PLT, an address through the GOT) would let any
# other definition of that name in the process replace the library's own.
qz_output_lines(lines ${READELF} -rW ${LIB})
foreach(l ${lines})
  if(l MATCHES "^[0-9a-f]+ +[0-9a-f]+ +[A-Z0-9_]+ +[0-9a-f]+ +([A-Za-z_][A-Za-z_0-9]*)")
    list(FIND declared ${CMAKE_MATCH_1} at)
    if(at GREATER -1)
      message(SEND_ERROR "the library reaches its own ${CMAKE_MATCH_1} through a dynamic relocation")
    endif()
  endif()
endforeach()
# The same at the source: no object file of the library refers to an exported name it does not
# define (link-time binding would hide such a call in the shared library, not in a static link).
qz_output_lines(lines ${NM} -A --undefined-only ${STATIC_LIB})
foreach(l ${lines})
  if(l MATCHES "^[^:]*:([^:]+): +U ([A-Za-z_][A-Za-z_0-9]*)$")
    list(FIND declared ${CMAKE_MATCH_2} at)
    if(at GREATER -1)
      message(SEND_ERROR "${CMAKE_MATCH_1} calls the exported ${CMAKE_MATCH_2}: call its internal entry point")
    endif()
  endif()
endforeach()

# No writable static storage in any object file (static or thread-local variables, function-local
# statics, zero-initialised or not): every call keeps its state in the caller's records and on its
# own stack, so calls on separate records may overlap from any number of threads.
qz_output_lines(lines ${OBJDUMP} -t ${STATIC_LIB})
foreach(l ${lines})
  # Objects and thread-local objects of nonzero size in .data, .bss, .tdata or .tbss (the zero-size
  # entries there are the sections' own symbols).
  if(l MATCHES "^[0-9a-f]+ .* (\\.t?(data|bss)[^ \t]*)[ \t]+0*[1-9a-f][0-9a-f]* (.+)$")
    message(SEND_ERROR "writable static storage in the library: ${CMAKE_MATCH_3} (${CMAKE_MATCH_1})")
  endif()
endforeach()

# Imports: nothing from the allocator, stdio, iostreams, exceptions or threads.
qz_output_lines(lines ${NM} -D --undefined-only ${LIB})
set(forbidden "^(malloc|calloc|realloc|free|aligned_alloc|posix_memalign|memalign|valloc|_Zn[wa]|_Zd[la]|.*printf|puts|putchar|fputs|fputc|fwrite|fread|fopen|fclose|fflush|perror|_ZSt4cout|_ZSt4cerr|_ZNSo|_ZNSi|__cxa_throw|__cxa_allocate_exception|__cxa_guard|pthread_|abort|exit|__assert_fail|syscall)")
foreach(l ${lines})
  string(REGEX REPLACE "^ *[A-Za-z] " "" sym "${l}")
  string(REGEX REPLACE "@.*" "" sym "${sym}")
  if(sym MATCHES "${forbidden}")
    message(SEND_ERROR "forbidden import: ${sym}")
  endif()
endforeach()

# Layering: only the scalar primitives include the standard mathematics library.
file(GLOB_RECURSE sources ${SRC_DIR}/*.cpp ${SRC_DIR}/*.h)
foreach(f ${sources})
  if(NOT f MATCHES "/QZBaseMath/scalar")
    file(STRINGS ${f} hits REGEX "#include[ \t]*<(cmath|math\\.h)>")
    if(hits)
      message(SEND_ERROR "${f} includes the mathematics library directly")
    endif()
  endif()
endforeach()

message(STATUS "${n_declared} functions declared and exported")
