# The exported functions of the public headers: every declaration that starts with QZ_API.
# Used to write the linker version script and, by the symbol test, to check the export table.
function(qz_public_functions out)
  set(names "")
  foreach(h ${ARGN})
    file(READ ${h} text)
    # Comments and preprocessor lines never declare anything: drop them first (the markers $ and
    # ` stand for the comment delimiters, which CMake's regular expressions cannot match lazily).
    string(REPLACE "/*" "$" text "${text}")
    string(REPLACE "*/" "`" text "${text}")
    string(REGEX REPLACE "[$][^`]*`" " " text "${text}")
    string(REGEX REPLACE "//[^\n]*" "" text "${text}")
    string(REGEX REPLACE "#[^\n]*" "" text "${text}")
    string(REGEX MATCHALL "QZ_API[^;{(]*[ \t\n*]([A-Za-z_][A-Za-z_0-9]*)[ \t\n]*\\(" decls "${text}")
    foreach(d ${decls})
      string(REGEX REPLACE ".*[ \t\n*]([A-Za-z_][A-Za-z_0-9]*)[ \t\n]*\\($" "\\1" name "${d}")
      list(APPEND names ${name})
    endforeach()
  endforeach()
  list(REMOVE_DUPLICATES names)
  list(SORT names)
  set(${out} ${names} PARENT_SCOPE)
endfunction()
