include(CheckCXXSourceCompiles)

# Our option comes after the user's flags and wins, so a build would go on in silence with other
# flags than were asked for; a host that compiles our headers that way would get other results.
string(TOUPPER "${CMAKE_BUILD_TYPE}" build_type)
if("${CMAKE_CXX_FLAGS} ${CMAKE_CXX_FLAGS_${build_type}}" MATCHES "-ffp-contract=(fast|on)")
  message(FATAL_ERROR "Vexa's results are exact: a fused multiply-add changes them. "
                      "Remove ${CMAKE_MATCH_0} from the compiler flags.")
endif()

# gcc 12.0 to 12.2 fuse in their SLP vectorizer although contraction is off, wherever the target has
# the instructions (-march=native, x86-64-v3): a product that is added in one lane and subtracted in
# the next becomes vfmaddsub. The vectorizer is then switched off for our own sources; the arithmetic
# of the headers has no such form.
set(VEXA_SLP_FUSES OFF)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_GREATER_EQUAL 12
   AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 12.3)
  get_directory_property(options COMPILE_OPTIONS)
  string(REPLACE ";" " " CMAKE_REQUIRED_FLAGS "${options}")
  unset(VEXA_TARGET_HAS_FMA CACHE)
  check_cxx_source_compiles("#ifndef __FMA__
                             #error
                             #endif
                             int main() {}" VEXA_TARGET_HAS_FMA)
  unset(CMAKE_REQUIRED_FLAGS)
  set(VEXA_SLP_FUSES ${VEXA_TARGET_HAS_FMA})
endif()

# A fused multiply-add rounds once where the required results round twice, so the last bit would
# differ. Headers hold arithmetic too: whoever includes them inherits the switch.
function(vexa_set_floating_point target)
  get_target_property(type ${target} TYPE)
  if(type STREQUAL "EXECUTABLE")
    target_compile_options(${target} PRIVATE -ffp-contract=off)
  else()
    target_compile_options(${target} PUBLIC -ffp-contract=off)
  endif()
  if(VEXA_SLP_FUSES)
    target_compile_options(${target} PRIVATE -fno-tree-slp-vectorize)
  endif()
endfunction()
