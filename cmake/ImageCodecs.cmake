# zlib, libdeflate and libjpeg-turbo encode tiles; Debian: zlib1g-dev libdeflate-dev libjpeg62-turbo-dev.
find_package(ZLIB REQUIRED)
find_package(JPEG REQUIRED)
if(NOT TARGET Deflate::deflate)
    find_path(DEFLATE_INCLUDE_DIR libdeflate.h REQUIRED)
    find_library(DEFLATE_LIBRARY deflate REQUIRED)
    add_library(Deflate::deflate UNKNOWN IMPORTED GLOBAL)
    set_target_properties(Deflate::deflate PROPERTIES
        IMPORTED_LOCATION ${DEFLATE_LIBRARY} INTERFACE_INCLUDE_DIRECTORIES ${DEFLATE_INCLUDE_DIR})
endif()
