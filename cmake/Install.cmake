# cmake --install: libraries, headers and the CMake package Orvo_Tile.
include(CMakePackageConfigHelpers)

get_property(rooms GLOBAL PROPERTY ORVO_ROOMS)
install(TARGETS ${rooms} EXPORT Orvo_TileTargets ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR})
set(rooms_with_headers support errorreport tileimage tilevector platform)
if(ORVO_LINUX)
    list(APPEND rooms_with_headers tiling)
endif()
foreach(room IN LISTS rooms_with_headers)
    install(DIRECTORY ${room}/ DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/orvo_tile/${room}
        FILES_MATCHING PATTERN "*.h"
        PATTERN JsonText.h EXCLUDE  # of the engine's own sources
        REGEX "/qt/[^M][^/]*$" EXCLUDE)  # the window is a module: its door alone is used
endforeach()

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/Orvo_Tile)
install(EXPORT Orvo_TileTargets NAMESPACE Orvo_Tile:: DESTINATION ${package_dir})
configure_package_config_file(cmake/Orvo_TileConfig.cmake.in Orvo_TileConfig.cmake INSTALL_DESTINATION ${package_dir})
write_basic_package_version_file(Orvo_TileConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/Orvo_TileConfig.cmake cmake/GEOS.cmake cmake/ImageCodecs.cmake
    ${CMAKE_CURRENT_BINARY_DIR}/Orvo_TileConfigVersion.cmake DESTINATION ${package_dir})
