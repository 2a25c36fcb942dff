# What libFleetKit.so shows to its users: the classes and functions below. The version script hides
# everything else, instances of the standard library's templates included, which are visible
# whatever the compiler is told.
set(exported_classes FleetKit IPTool BaseDomain DomainContainer)
foreach(header IN LISTS record_headers)
  get_filename_component(class "${header}" NAME_WE)
  list(APPEND exported_classes "${class}")
endforeach()
set(exported_functions "fleetkit::" checkDomainId)

set(exported_names "")
foreach(class IN LISTS exported_classes)
  string(APPEND exported_names "    ${class}::*;\n    \"vtable for ${class}\";\n"
         "    \"typeinfo for ${class}\";\n    \"typeinfo name for ${class}\";\n")
endforeach()
foreach(function IN LISTS exported_functions)
  string(APPEND exported_names "    ${function}*;\n")
endforeach()
set(version_script "${PROJECT_BINARY_DIR}/FleetKit.map")
file(CONFIGURE OUTPUT "${version_script}" @ONLY CONTENT
"FLEETKIT_@PROJECT_VERSION_MAJOR@ {
global:
  extern \"C++\" {
@exported_names@  };
local:
  *;
};
")

target_link_options(FleetKit PRIVATE
  "LINKER:--version-script=${version_script}" "LINKER:--as-needed")

# Sessions and the thread that keeps them alive outlive a dlclose() of the library.
target_link_options(FleetKit PRIVATE "LINKER:-z,nodelete")
set_property(TARGET FleetKit APPEND PROPERTY LINK_DEPENDS "${version_script}")

# It calls nothing of the C library itself, and every library of a package is to name that one.
target_link_options(FleetKitQt PRIVATE "LINKER:--no-as-needed")

# What a library calls inside itself is bound inside: a user's class of the name of a record must not
# take its place.
foreach(library FleetKit FleetKitQt)
  target_link_options(${library} PRIVATE "LINKER:-Bsymbolic")
  # The run-time library of a sanitizer is found when the program starts.
  if(NOT FLEETKIT_SANITIZE)
    target_link_options(${library} PRIVATE "LINKER:--no-undefined")
  endif()
endforeach()

# The descriptors are tables of pointers: packed, their relocations take a tenth of the place.
include(CheckLinkerFlag)
check_linker_flag(CXX "LINKER:-z,pack-relative-relocs" FLEETKIT_PACKS_RELOCATIONS)
if(FLEETKIT_PACKS_RELOCATIONS)
  target_link_options(FleetKit PRIVATE "LINKER:-z,pack-relative-relocs")
endif()
