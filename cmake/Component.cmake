# The component as one library; its rooms add their sources.
add_library(orvo_tile STATIC)
target_include_directories(orvo_tile PUBLIC
    $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}>
    $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}/orvo_tile>)
target_compile_features(orvo_tile PUBLIC cxx_std_20)
target_link_libraries(orvo_tile PRIVATE $<BUILD_INTERFACE:orvo_options>)
set_property(GLOBAL APPEND PROPERTY ORVO_ROOMS orvo_tile)
