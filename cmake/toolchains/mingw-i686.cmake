# Windows, 32 bits, with mingw-w64; Debian: g++-mingw-w64-i686-posix mingw-w64-tools.
set(MINGW_TRIPLE i686-w64-mingw32)
include(${CMAKE_CURRENT_LIST_DIR}/mingw.cmake)
# Doubles are computed in their own precision, as on every other processor.
set(CMAKE_CXX_FLAGS_INIT "-msse2 -mfpmath=sse")
