# What the Windows build adds to the project: one directory for every
# program and DLL, as Windows finds a program's DLLs beside it, with the
# compiler's own runtime DLLs copied in, so that the tests run under Wine
# without a search path.
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bin)
set(CMAKE_LIBRARY_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bin)
# MinGW's linker exports every symbol of a DLL that marks none, which is what
# the layers want: they are shared libraries for the module's sake only.
set(CMAKE_WINDOWS_EXPORT_ALL_SYMBOLS ON)

foreach(dll libstdc++-6.dll libgcc_s_seh-1.dll libgcc_s_dw2-1.dll libwinpthread-1.dll)
  find_file(VELORN_RUNTIME_${dll} ${dll} PATHS ${VELORN_MINGW_RUNTIME_DIRS} NO_DEFAULT_PATH NO_CMAKE_FIND_ROOT_PATH)
  if(VELORN_RUNTIME_${dll})
    file(COPY ${VELORN_RUNTIME_${dll}} DESTINATION ${CMAKE_RUNTIME_OUTPUT_DIRECTORY})
  endif()
endforeach()

# Programs of the build run under Wine: test discovery, ctest and custom
# commands. Wine keeps its registry and drive in a prefix of this build, so
# that the tests that write registry keys touch nobody else's.
set(VELORN_WINE_PREFIX ${CMAKE_BINARY_DIR}/wine-prefix)
set(CMAKE_CROSSCOMPILING_EMULATOR env WINEPREFIX=${VELORN_WINE_PREFIX} WINEDEBUG=-all wine)

# The DLLs of the libraries that scripts/install-deps-windows built.
file(GLOB VELORN_DEPENDENCY_DLLS ${VELORN_WINDOWS_DEPS}/bin/*.dll)
if(VELORN_DEPENDENCY_DLLS)
  file(COPY ${VELORN_DEPENDENCY_DLLS} DESTINATION ${CMAKE_RUNTIME_OUTPUT_DIRECTORY})
endif()
