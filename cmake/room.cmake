# Headers of everything but libvexa itself are installed here: their folders have common names.
set(VEXA_ROOM_HEADERS "${CMAKE_INSTALL_INCLUDEDIR}/vexa-${PROJECT_VERSION_MAJOR}")

# What every library beside the runtime shares: include lines from the root, warnings, exact floats.
# The C and Python libraries are shared objects and link the rooms, hence the independent position.
function(vexa_room target)
  target_include_directories(${target} PUBLIC
    "$<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}>" "$<INSTALL_INTERFACE:${VEXA_ROOM_HEADERS}>")
  string(REPLACE "vexa_" "" name ${target})
  set_target_properties(${target} PROPERTIES EXPORT_NAME ${name} POSITION_INDEPENDENT_CODE ON)
  vexa_set_warnings(${target})
  vexa_set_floating_point(${target})
endfunction()
