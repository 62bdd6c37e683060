# Qt draws the error dialog's window; Debian: qt6-base-dev. Left out where it is missing, or with ORVO_WINDOW=OFF.
option(ORVO_WINDOW "Build the window module (needs Qt 6)" ON)
if(ORVO_WINDOW)
    find_package(Qt6 6.2 QUIET COMPONENTS Widgets PrintSupport)
    if(NOT Qt6_FOUND)
        message(STATUS "Qt 6 is not there: the window module is left out")
    endif()
endif()
