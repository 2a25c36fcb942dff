# The headers of the exported library, as users include them: <fleetkit/FleetKit.h>,
# <fleetkit/domain/NTPParam.h>. They are staged in ${FLEETKIT_STAGED_INCLUDE} at build time.
set(FLEETKIT_STAGED_INCLUDE "${PROJECT_BINARY_DIR}/include")

set(public_headers
  device/FleetKit.h device/Login.h device/StructConversions.h device/TarnStruct.h
  device/TextFunctions.h Product/Technic/Export.h Product/Technic/IPTool.h
  Product/Technic/LogThreshold.h
  domain/BaseDomain.h domain/DomainContainer.h domain/DomainVectorContainer.h
  domain/MemberVisitor.h domain/RecordDescriptor.h protocol/CommandCatalogue.h)
list(TRANSFORM public_headers PREPEND "${PROJECT_SOURCE_DIR}/src/")
file(STRINGS "${FLEETKIT_GENERATED}/exported-records.txt" record_headers)
set(generated_headers ${record_headers}
  Product/Technic/ErrorCode.h device/DeviceType.h protocol/CommandIds.h)
list(TRANSFORM generated_headers PREPEND "${FLEETKIT_GENERATED}/")

set(staging_list "")
set(staged_headers "")
foreach(source IN LISTS public_headers generated_headers)
  string(REGEX REPLACE "^(${PROJECT_SOURCE_DIR}/src|${FLEETKIT_GENERATED})/(device/)?" "" name
         "${source}")
  string(APPEND staging_list "${source}|${name}\n")
  list(APPEND staged_headers "${FLEETKIT_STAGED_INCLUDE}/fleetkit/${name}")
endforeach()
file(CONFIGURE OUTPUT "${PROJECT_BINARY_DIR}/public-headers.txt" CONTENT "${staging_list}" @ONLY)

add_custom_command(
  OUTPUT "${PROJECT_BINARY_DIR}/public-headers.stamp"
  BYPRODUCTS ${staged_headers}
  COMMAND "${CMAKE_COMMAND}" "-DHEADERS=${PROJECT_BINARY_DIR}/public-headers.txt"
          "-DOUT=${FLEETKIT_STAGED_INCLUDE}" "-DSTAMP=${PROJECT_BINARY_DIR}/public-headers.stamp"
          -P "${PROJECT_SOURCE_DIR}/cmake/StageHeaders.cmake"
  DEPENDS ${public_headers} ${generated_headers} "${PROJECT_BINARY_DIR}/public-headers.txt"
          "${PROJECT_SOURCE_DIR}/cmake/StageHeaders.cmake"
  COMMENT "Staging the public headers")
add_custom_target(fleetkit-headers DEPENDS "${PROJECT_BINARY_DIR}/public-headers.stamp")

add_dependencies(FleetKit fleetkit-headers)
target_include_directories(FleetKit INTERFACE
  "$<BUILD_INTERFACE:${FLEETKIT_STAGED_INCLUDE}>" "$<INSTALL_INTERFACE:include>")
