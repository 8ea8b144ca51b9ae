# "cpack -G DEB" packs exactly what "cmake --install" puts in place, under /usr.
# Configure with -DCMAKE_INSTALL_PREFIX=/usr so that the library folder is the
# multiarch one (lib/x86_64-linux-gnu) that Debian's loader searches.
set(CPACK_PACKAGE_NAME sensorcontrol)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "${PROJECT_DESCRIPTION}")
set(CPACK_PACKAGE_DESCRIPTION
    "libsensorcontrol is loaded by a host application to control colour-measurement sensors: one C export per
resource, JSON texts in and out. The package holds the library, its header, CMake and pkg-config files,
the sensorctl command-line host with its man page, and the device-library sets the library drives: a
simulated one (the default) and, where it was built, one over the system's colour services.")
set(CPACK_PACKAGE_VENDOR "libsensorcontrol developers")
set(CPACK_PACKAGE_CONTACT "libsensorcontrol developers <sensorcontrol@example.invalid>")
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
# Dependencies from the linked system libraries, by dpkg-shlibdeps; the
# library's own shlibs file and the ldconfig trigger come with it.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS_POLICY ">=")
# mimalloc is opened at run time when it is there, and not needed otherwise:
# recommended, by the Debian package that holds the soname of the major
# version quilljson asks for.
if(QUILLJSON_MIMALLOC)
  execute_process(COMMAND dpkg-query -S "libmimalloc.so.2" OUTPUT_VARIABLE mimalloc_owner
                  ERROR_QUIET)
  string(REGEX MATCH "^[^:,]+" mimalloc_package "${mimalloc_owner}")
  if(mimalloc_package)
    set(CPACK_DEBIAN_PACKAGE_RECOMMENDS ${mimalloc_package})
  endif()
endif()
set(CPACK_STRIP_FILES ON)
include(CPack)
