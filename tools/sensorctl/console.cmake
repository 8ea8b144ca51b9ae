# The browser console's files: the ones in console/ and the CIE 1931 2°
# colour-matching data turned into a module at build time. The gateway
# embeds SENSORCTL_CONSOLE_FILES; the target sensorctl_console builds them.
set(SENSORCTL_CIE_CMF "/usr/share/colord/cmf/CIE1931-2deg-XYZ.cmf"
    CACHE FILEPATH "CIE 1931 2-degree colour-matching functions, CGATS (Debian: colord-data)")
set(cmf_input "${SENSORCTL_CIE_CMF}")
if(NOT EXISTS "${SENSORCTL_CIE_CMF}")
  message(WARNING "${SENSORCTL_CIE_CMF} not found (Debian package colord-data): "
                  "the console's chromaticity diagram will have no spectral locus")
  set(cmf_input "")
endif()

set(SENSORCTL_CONSOLE_DIR "${CMAKE_CURRENT_BINARY_DIR}/console")
set(cie_module "${SENSORCTL_CONSOLE_DIR}/cie1931-2deg.js")
add_custom_command(
  OUTPUT "${cie_module}"
  COMMAND ${CMAKE_COMMAND} -E make_directory "${SENSORCTL_CONSOLE_DIR}"
  COMMAND ${CMAKE_COMMAND} "-DCMF=${cmf_input}" "-DOUTPUT=${cie_module}" -P
          "${CMAKE_CURRENT_SOURCE_DIR}/cmf_to_js.cmake"
  DEPENDS "${CMAKE_CURRENT_SOURCE_DIR}/cmf_to_js.cmake" ${cmf_input}
  COMMENT "Console: CIE 1931 2-degree colour-matching data from ${SENSORCTL_CIE_CMF}"
  VERBATIM)
add_custom_target(sensorctl_console DEPENDS "${cie_module}")

file(GLOB SENSORCTL_CONSOLE_FILES CONFIGURE_DEPENDS "${CMAKE_CURRENT_SOURCE_DIR}/console/*")
list(APPEND SENSORCTL_CONSOLE_FILES "${cie_module}")
