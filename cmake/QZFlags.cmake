# Flags that keep every result bit-exact across optimisation levels, compilers and CPUs: no
# contraction of a*b+c into a fused multiply-add, no fast-math reassociation, and no
# -march=native (which would switch on FMA). Applied to the library, tests and examples alike.
set(QZ_EXACT_FLAGS -ffp-contract=off -fno-fast-math)
set(QZ_WARNINGS -Wall -Wextra)
# The library's own code (src/ and the C++ headers) is held to more: a conversion that may change
# a value, a shadowed name, a float promoted to double unseen, a cast that drops const. With
# QZ_WARNINGS_AS_ERRORS (on in scripts/test.sh and CI) each one fails the library's build; the
# flags are private to the library, so consumers and the tests keep their own.
set(QZ_STRICT_WARNINGS ${QZ_WARNINGS} -Wpedantic -Wshadow -Wconversion -Wdouble-promotion
    -Wcast-qual)
option(QZ_WARNINGS_AS_ERRORS "A warning in the library's own sources fails the build" OFF)

if(QZ_SANITIZE)
  add_compile_options(-fsanitize=${QZ_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all)
  add_link_options(-fsanitize=${QZ_SANITIZE})
endif()
