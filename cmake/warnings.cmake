# Pure C99, whatever the compiler would allow besides.
function(vexa_set_c_warnings target)
  set_target_properties(${target} PROPERTIES C_STANDARD 99 C_STANDARD_REQUIRED ON C_EXTENSIONS OFF)
  target_compile_options(${target} PRIVATE -Wall -Wextra -pedantic)
  if(VEXA_WARNINGS_AS_ERRORS)
    target_compile_options(${target} PRIVATE -Werror)
  endif()
endfunction()

# Warnings for our own targets; never part of what a user of the library inherits.
function(vexa_set_warnings target)
  target_compile_options(${target} PRIVATE
    -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wdouble-promotion
    -Wold-style-cast -Wnon-virtual-dtor -Wformat=2)
  if(VEXA_WARNINGS_AS_ERRORS)
    target_compile_options(${target} PRIVATE -Werror)
  endif()
endfunction()
