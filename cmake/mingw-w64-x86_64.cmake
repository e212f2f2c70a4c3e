# Cross build for 64-bit Windows with MinGW-w64, for machines where only the
# 64-bit Wine can be installed. Used by the preset "windows-x86_64".
set(VELORN_MINGW_TRIPLET x86_64-w64-mingw32)
set(VELORN_MINGW_ARCH x86_64)
set(CMAKE_SYSTEM_PROCESSOR x86_64)
include(${CMAKE_CURRENT_LIST_DIR}/mingw-w64-common.cmake)
