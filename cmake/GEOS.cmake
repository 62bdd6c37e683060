# GEOS answers where bounds and walks cannot, repairs and overlays; Debian: libgeos-dev.
if(NOT TARGET GEOS::geos_c)
    find_path(GEOS_INCLUDE_DIR geos_c.h REQUIRED)
    find_library(GEOS_C_LIBRARY geos_c REQUIRED)
    add_library(GEOS::geos_c UNKNOWN IMPORTED GLOBAL)
    set_target_properties(GEOS::geos_c PROPERTIES
        IMPORTED_LOCATION ${GEOS_C_LIBRARY} INTERFACE_INCLUDE_DIRECTORIES ${GEOS_INCLUDE_DIR})
endif()
