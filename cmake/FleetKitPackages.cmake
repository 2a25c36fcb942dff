# The Debian packages: one for each part that is installed.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_DIRECTORY "${PROJECT_BINARY_DIR}/packages")
set(CPACK_PACKAGE_NAME fleetkit)
set(CPACK_PACKAGE_VERSION "${PROJECT_VERSION}")
set(CPACK_PACKAGE_CONTACT "FleetKit contributors <fleetkit@example.org>")
# Each package has a summary of its own, the first line of its description.
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
  OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)

set(CPACK_COMPONENTS_ALL runtime development qt qtdevelopment tools)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SOURCE fleetkit)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS "${PROJECT_BINARY_DIR}/src")
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS_POLICY ">=")

set(library_package "libfleetkit${PROJECT_VERSION_MAJOR}")
set(library_dependency
  "${library_package} (= ${PROJECT_VERSION}-${CPACK_DEBIAN_PACKAGE_RELEASE})")

set(CPACK_DEBIAN_RUNTIME_PACKAGE_NAME ${library_package})
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_CONTROL_EXTRA "${PROJECT_SOURCE_DIR}/packaging/triggers")
set(CPACK_COMPONENT_RUNTIME_DESCRIPTION "management of network video devices, library
FleetKit logs in to IP cameras and recorders, reads and changes their
parameters, and asks what they can do.")

set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME libfleetkit-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS "${library_dependency}")
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SUGGESTS libfleetkitqt-dev)
set(CPACK_COMPONENT_DEVELOPMENT_DESCRIPTION "management of network video devices, development files
Headers of FleetKit, and its files for CMake and pkg-config. Two of its
functions take texts of Qt; who calls them needs libfleetkitqt-dev.")

set(qt_library_package "libfleetkitqt${PROJECT_VERSION_MAJOR}")
set(qt_library_dependency
  "${qt_library_package} (= ${PROJECT_VERSION}-${CPACK_DEBIAN_PACKAGE_RELEASE})")
set(CPACK_DEBIAN_QT_PACKAGE_NAME ${qt_library_package})
set(CPACK_DEBIAN_QT_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_QT_PACKAGE_DEPENDS "${library_dependency}")
set(CPACK_DEBIAN_QT_PACKAGE_CONTROL_EXTRA "${PROJECT_SOURCE_DIR}/packaging/triggers")
set(CPACK_COMPONENT_QT_DESCRIPTION "management of network video devices, functions with texts of Qt
Two functions of FleetKit take texts of Qt. They stand in this library, so
that those who do without them do without Qt.")

set(CPACK_DEBIAN_QTDEVELOPMENT_PACKAGE_NAME libfleetkitqt-dev)
set(CPACK_DEBIAN_QTDEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_QTDEVELOPMENT_PACKAGE_DEPENDS
  "${qt_library_dependency}, libfleetkit-dev (= ${PROJECT_VERSION}-${CPACK_DEBIAN_PACKAGE_RELEASE}), qt${QT_VERSION_MAJOR}-base-dev")
set(CPACK_COMPONENT_QTDEVELOPMENT_DESCRIPTION "management of network video devices, development with texts of Qt
What CMake and pkg-config need to link the functions of FleetKit that take
texts of Qt.")

set(CPACK_DEBIAN_TOOLS_PACKAGE_NAME fleetkit-tools)
set(CPACK_DEBIAN_TOOLS_PACKAGE_SECTION net)
set(CPACK_DEBIAN_TOOLS_PACKAGE_DEPENDS "${library_dependency}")
set(CPACK_COMPONENT_TOOLS_DESCRIPTION "management of network video devices, programs
fleetctl reads and changes IP cameras and recorders from the command line;
virtual-device is a device to talk to where there is no hardware.")

# What Debian wants to see in each package, and other installations do without.
set(changelog "${PROJECT_BINARY_DIR}/changelog.Debian.gz")
add_custom_command(OUTPUT "${changelog}"
  COMMAND gzip -9nc "${PROJECT_SOURCE_DIR}/packaging/changelog" > "${changelog}"
  DEPENDS "${PROJECT_SOURCE_DIR}/packaging/changelog")
add_custom_target(fleetkit-changelog ALL DEPENDS "${changelog}")
foreach(component ${CPACK_COMPONENTS_ALL})
  string(TOUPPER ${component} name)
  install(FILES "${PROJECT_SOURCE_DIR}/packaging/copyright" "${changelog}"
    DESTINATION "${CMAKE_INSTALL_DATAROOTDIR}/doc/${CPACK_DEBIAN_${name}_PACKAGE_NAME}"
    COMPONENT ${component} EXCLUDE_FROM_ALL)
endforeach()

include(CPack)
