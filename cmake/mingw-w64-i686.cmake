# Cross build for 32-bit Windows with MinGW-w64, as the host application
# loads the plug-in. Used by the preset "windows".
set(VELORN_MINGW_TRIPLET i686-w64-mingw32)
set(VELORN_MINGW_ARCH i686)
set(CMAKE_SYSTEM_PROCESSOR i686)
include(${CMAKE_CURRENT_LIST_DIR}/mingw-w64-common.cmake)
