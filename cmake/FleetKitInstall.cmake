# What is installed, in parts: runtime (the library), development, tools (the programs), and the
# library over texts of Qt with its own development files.
include(CMakePackageConfigHelpers)

set(config_directory "${CMAKE_INSTALL_LIBDIR}/cmake/FleetKit")
set(pc_directory "${CMAKE_INSTALL_LIBDIR}/pkgconfig")

# The library.
install(TARGETS FleetKit EXPORT FleetKitTargets
  LIBRARY DESTINATION "${CMAKE_INSTALL_LIBDIR}"
  COMPONENT runtime NAMELINK_COMPONENT development)
install(TARGETS FleetKitQt EXPORT FleetKitQtTargets
  LIBRARY DESTINATION "${CMAKE_INSTALL_LIBDIR}"
  COMPONENT qt NAMELINK_COMPONENT qtdevelopment)

# Headers, CMake package, pkg-config.
install(DIRECTORY "${PROJECT_BINARY_DIR}/include/fleetkit"
  DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}" COMPONENT development
  FILES_MATCHING PATTERN "*.h")
install(EXPORT FleetKitTargets NAMESPACE FleetKit::
  DESTINATION "${config_directory}" COMPONENT development)
install(EXPORT FleetKitQtTargets NAMESPACE FleetKit::
  DESTINATION "${config_directory}" COMPONENT qtdevelopment)
configure_package_config_file("${PROJECT_SOURCE_DIR}/cmake/FleetKitConfig.cmake.in"
  "${PROJECT_BINARY_DIR}/FleetKitConfig.cmake" INSTALL_DESTINATION "${config_directory}")
write_basic_package_version_file("${PROJECT_BINARY_DIR}/FleetKitConfigVersion.cmake"
  COMPATIBILITY SameMajorVersion)
install(FILES
  "${PROJECT_BINARY_DIR}/FleetKitConfig.cmake" "${PROJECT_BINARY_DIR}/FleetKitConfigVersion.cmake"
  DESTINATION "${config_directory}" COMPONENT development)
file(RELATIVE_PATH FLEETKIT_PC_TO_PREFIX "/${pc_directory}" "/")
string(REGEX REPLACE "/$" "" FLEETKIT_PC_TO_PREFIX "${FLEETKIT_PC_TO_PREFIX}")
configure_file("${PROJECT_SOURCE_DIR}/cmake/fleetkit.pc.in" "${PROJECT_BINARY_DIR}/fleetkit.pc" @ONLY)
configure_file("${PROJECT_SOURCE_DIR}/cmake/fleetkit-qt.pc.in"
  "${PROJECT_BINARY_DIR}/fleetkit-qt.pc" @ONLY)
install(FILES "${PROJECT_BINARY_DIR}/fleetkit.pc"
  DESTINATION "${pc_directory}" COMPONENT development)
install(FILES "${PROJECT_BINARY_DIR}/fleetkit-qt.pc"
  DESTINATION "${pc_directory}" COMPONENT qtdevelopment)

# The programs, which find the library beside them wherever the tree is put.
file(RELATIVE_PATH library_from_program "/${CMAKE_INSTALL_BINDIR}" "/${CMAKE_INSTALL_LIBDIR}")
set_target_properties(fleetctl PROPERTIES INSTALL_RPATH "$ORIGIN/${library_from_program}")
install(TARGETS fleetctl virtual-device
  RUNTIME DESTINATION "${CMAKE_INSTALL_BINDIR}" COMPONENT tools)

# Their manual pages are their own help.
set(pages "")
foreach(program fleetctl virtual-device)
  set(page "${PROJECT_BINARY_DIR}/man/${program}.1.gz")
  add_custom_command(OUTPUT "${page}"
    COMMAND "${Python3_EXECUTABLE}" -B "${PROJECT_SOURCE_DIR}/packaging/manual_page.py"
            "$<TARGET_FILE:${program}>" "${PROJECT_VERSION}" "${page}"
    DEPENDS ${program} "${PROJECT_SOURCE_DIR}/packaging/manual_page.py"
    COMMENT "Writing the manual page of ${program}")
  list(APPEND pages "${page}")
endforeach()
add_custom_target(fleetkit-man ALL DEPENDS ${pages})
install(FILES ${pages} DESTINATION "${CMAKE_INSTALL_MANDIR}/man1" COMPONENT tools)
