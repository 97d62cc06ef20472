# Division by zero of floats stays out of the list: infinities are required results.
if(VEXA_SANITIZE)
  add_compile_options(-fsanitize=${VEXA_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  # gcc's manual warns of false findings of this kind in instrumented code; plain builds have the warning.
  add_compile_options($<$<CXX_COMPILER_ID:GNU>:-Wno-maybe-uninitialized>)
  add_link_options(-fsanitize=${VEXA_SANITIZE})
endif()
if(VEXA_COVERAGE)
  add_compile_options(--coverage)
  add_link_options(--coverage)
endif()
# The fuzzer sees which branches of the library an input takes.
if(VEXA_BUILD_FUZZERS)
  add_compile_options(-fsanitize=fuzzer-no-link)
  add_link_options(-fsanitize=fuzzer-no-link)
endif()
