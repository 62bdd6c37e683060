# Windows, 64 bits, with mingw-w64; Debian: g++-mingw-w64-x86-64-posix mingw-w64-tools.
set(MINGW_TRIPLE x86_64-w64-mingw32)
include(${CMAKE_CURRENT_LIST_DIR}/mingw.cmake)
