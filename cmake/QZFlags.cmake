# Flags that keep every result bit-exact across optimisation levels, compilers and CPUs: no
# contraction of a*b+c into a fused multiply-add, no fast-math reassociation, and no
# -march=native (which would switch on FMA). Applied to the library, tests and examples alike.
set(QZ_EXACT_FLAGS -ffp-contract=off -fno-fast-math)
set(QZ_WARNINGS -Wall -Wextra)

if(QZ_SANITIZE)
  add_compile_options(-fsanitize=${QZ_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all)
  add_link_options(-fsanitize=${QZ_SANITIZE})
endif()
