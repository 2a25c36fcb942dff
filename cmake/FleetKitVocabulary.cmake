# The wire vocabulary: schema/ in, C++ under ${FLEETKIT_GENERATED} out, at build time.
set(FLEETKIT_GENERATED "${PROJECT_BINARY_DIR}/generated")
set(FLEETKIT_SCHEMA "${PROJECT_SOURCE_DIR}/schema")
set(FLEETKIT_CODEGEN "${PROJECT_SOURCE_DIR}/codegen")

file(GLOB FLEETKIT_SCHEMA_FILES CONFIGURE_DEPENDS "${FLEETKIT_SCHEMA}/*.schema")
file(GLOB FLEETKIT_CODEGEN_FILES CONFIGURE_DEPENDS "${FLEETKIT_CODEGEN}/*.py")
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS
  ${FLEETKIT_SCHEMA_FILES} ${FLEETKIT_CODEGEN_FILES})

# Generation runs while configuring, so that the list of sources is known; an output that did not
# change is not written again, so a reconfigure rebuilds nothing by itself.
execute_process(
  COMMAND "${Python3_EXECUTABLE}" -B "${FLEETKIT_CODEGEN}/fleetkit_codegen.py"
          --schema "${FLEETKIT_SCHEMA}" --out "${FLEETKIT_GENERATED}"
  RESULT_VARIABLE FLEETKIT_CODEGEN_RESULT)
if(NOT FLEETKIT_CODEGEN_RESULT EQUAL 0)
  message(FATAL_ERROR "The schema was refused; see the lines above.")
endif()
