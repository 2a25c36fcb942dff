# Libraries of the system that FleetKit stands on; cmake/packages.txt names their packages.
find_package(Threads REQUIRED)
find_package(Python3 REQUIRED COMPONENTS Interpreter)
find_package(PkgConfig REQUIRED)
pkg_check_modules(TinyXML REQUIRED IMPORTED_TARGET tinyxml)

# The text class of two exported signatures; the older major version serves as well.
find_package(QT NAMES Qt6 Qt5 REQUIRED COMPONENTS Core)
find_package(Qt${QT_VERSION_MAJOR} REQUIRED COMPONENTS Core)
