# What every library beside the runtime shares: include lines from the root, warnings, exact floats.
function(vexa_room target)
  target_include_directories(${target} PUBLIC "$<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}>")
  vexa_set_warnings(${target})
  vexa_set_floating_point(${target})
endfunction()
