# A fused multiply-add rounds once where the required results round twice, so the last bit would
# differ. Headers hold arithmetic too: whoever includes them inherits the switch.
function(vexa_set_floating_point target)
  get_target_property(type ${target} TYPE)
  if(type STREQUAL "EXECUTABLE")
    target_compile_options(${target} PRIVATE -ffp-contract=off)
  else()
    target_compile_options(${target} PUBLIC -ffp-contract=off)
  endif()
endfunction()
