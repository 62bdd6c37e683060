# GoogleTest and GoogleMock; Debian: libgtest-dev libgmock-dev.
find_package(GTest REQUIRED)
include(GoogleTest)
