# The HTTP gateway of `sensorctl serve` (gateway/), with the console's files
# built into it. cpp-httplib is Debian's compiled library: its compile flags
# come from its pkg-config file, since the class layouts depend on them.
find_package(PkgConfig REQUIRED)
pkg_check_modules(CPP_HTTPLIB REQUIRED IMPORTED_TARGET cpp-httplib)

if(NOT DEFINED SENSORCTL_CONSOLE_FILES)
  file(GLOB SENSORCTL_CONSOLE_FILES CONFIGURE_DEPENDS "${CMAKE_CURRENT_SOURCE_DIR}/console/*")
endif()
set(console_assets_cpp "${CMAKE_CURRENT_BINARY_DIR}/console_assets_data.cpp")
string(REPLACE ";" "|" console_files_arg "${SENSORCTL_CONSOLE_FILES}")
add_custom_command(
  OUTPUT "${console_assets_cpp}"
  COMMAND ${CMAKE_COMMAND} "-DFILES=${console_files_arg}" "-DOUTPUT=${console_assets_cpp}" -P
          "${CMAKE_CURRENT_SOURCE_DIR}/gateway/embed_assets.cmake"
  DEPENDS "${CMAKE_CURRENT_SOURCE_DIR}/gateway/embed_assets.cmake" ${SENSORCTL_CONSOLE_FILES}
  COMMENT "Console: embedding the console's files"
  VERBATIM)

file(GLOB SENSORCTL_GATEWAY_SOURCES CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/gateway/*.cpp)
add_library(sensorctl_gateway STATIC ${SENSORCTL_GATEWAY_SOURCES} "${console_assets_cpp}")
target_include_directories(sensorctl_gateway PUBLIC ${CMAKE_CURRENT_SOURCE_DIR}/gateway)
target_link_libraries(sensorctl_gateway PUBLIC sensorctl_core PkgConfig::CPP_HTTPLIB Threads::Threads)
