# The man page is written at build time from "sensorctl --help" and
# "sensorctl --version" by help2man, so it follows the usage text.
find_program(HELP2MAN help2man)
if(NOT HELP2MAN)
  message(WARNING "help2man not found: sensorctl is built without its man page (.ci/deps installs it)")
  return()
endif()
set(SENSORCTL_MAN_PAGE ${CMAKE_CURRENT_BINARY_DIR}/sensorctl.1)
add_custom_command(
  OUTPUT ${SENSORCTL_MAN_PAGE}
  COMMAND ${HELP2MAN} --no-info --section=1 --source=sensorcontrol
          "--name=send requests to libsensorcontrol the way a host application does"
          --include=${CMAKE_CURRENT_SOURCE_DIR}/sensorctl.h2m --output=${SENSORCTL_MAN_PAGE} $<TARGET_FILE:sensorctl>
  DEPENDS sensorctl ${CMAKE_CURRENT_SOURCE_DIR}/sensorctl.h2m
  COMMENT "Writing the sensorctl man page"
  VERBATIM)
add_custom_target(sensorctl_man ALL DEPENDS ${SENSORCTL_MAN_PAGE})
install(FILES ${SENSORCTL_MAN_PAGE} DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
