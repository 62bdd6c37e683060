# A room is a folder that builds one static library out of all its sources.
#   orvo_room(NAME [LIBRARIES ...])
# Headers are included from the root of the tree: "platform/Raster.h".
function(orvo_room name)
    cmake_parse_arguments(ROOM "" "" "LIBRARIES" ${ARGN})
    file(GLOB sources CONFIGURE_DEPENDS *.cpp)
    add_library(${name} STATIC ${sources})
    target_include_directories(${name} PUBLIC
        $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}>
        $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}/orvo_tile>)
    target_compile_features(${name} PUBLIC cxx_std_20)
    target_link_libraries(${name} PUBLIC ${ROOM_LIBRARIES} PRIVATE $<BUILD_INTERFACE:orvo_options>)
    set_property(GLOBAL APPEND PROPERTY ORVO_ROOMS ${name})
endfunction()
