# GoogleTest and GoogleMock; Debian: libgtest-dev libgmock-dev, and for Windows their sources, googletest.
if(WIN32)
    set(ORVO_GOOGLETEST_DIR /usr/src/googletest CACHE PATH "Folder of the sources of GoogleTest")
    set(googletest ${ORVO_GOOGLETEST_DIR}/googletest)
    set(googlemock ${ORVO_GOOGLETEST_DIR}/googlemock)
    add_library(googletest_for_windows STATIC EXCLUDE_FROM_ALL
        ${googletest}/src/gtest-all.cc ${googlemock}/src/gmock-all.cc)
    target_include_directories(googletest_for_windows SYSTEM
        PUBLIC ${googletest}/include ${googlemock}/include PRIVATE ${googletest} ${googlemock})
    set_target_properties(googletest_for_windows PROPERTIES CXX_EXTENSIONS ON)
    add_library(GTest::gmock ALIAS googletest_for_windows)
else()
    find_package(GTest REQUIRED)
    include(GoogleTest)
endif()
