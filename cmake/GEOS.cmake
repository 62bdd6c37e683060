# GEOS answers where an envelope's bounds cannot, repairs and overlays; Debian: libgeos-dev.
find_path(GEOS_INCLUDE_DIR geos_c.h)
find_library(GEOS_C_LIBRARY geos_c)
include(FindPackageHandleStandardArgs)
find_package_handle_standard_args(GEOS REQUIRED_VARS GEOS_C_LIBRARY GEOS_INCLUDE_DIR)
if(GEOS_FOUND AND NOT TARGET GEOS::geos_c)
    add_library(GEOS::geos_c UNKNOWN IMPORTED)
    set_target_properties(GEOS::geos_c PROPERTIES
        IMPORTED_LOCATION ${GEOS_C_LIBRARY} INTERFACE_INCLUDE_DIRECTORIES ${GEOS_INCLUDE_DIR})
endif()
