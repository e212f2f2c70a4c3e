# The part of the MinGW-w64 cross toolchain that both word sizes share. The
# including file sets VELORN_MINGW_TRIPLET and VELORN_MINGW_ARCH first.
set(CMAKE_SYSTEM_NAME Windows)

# The posix thread model: the host and the stand-in use std::thread and
# std::mutex, which the win32 model of GCC 12 lacks.
set(CMAKE_C_COMPILER ${VELORN_MINGW_TRIPLET}-gcc-posix)
set(CMAKE_CXX_COMPILER ${VELORN_MINGW_TRIPLET}-g++-posix)
set(CMAKE_RC_COMPILER ${VELORN_MINGW_TRIPLET}-windres)
set(CMAKE_OBJDUMP ${VELORN_MINGW_TRIPLET}-objdump)

# The libraries that Debian ships for Linux only are built by
# scripts/install-deps-windows into build/windows-deps/<arch>.
get_filename_component(_velorn_source_dir "${CMAKE_CURRENT_LIST_DIR}/.." ABSOLUTE)
set(VELORN_WINDOWS_DEPS "${_velorn_source_dir}/build/windows-deps/${VELORN_MINGW_ARCH}")
set(CMAKE_FIND_ROOT_PATH /usr/${VELORN_MINGW_TRIPLET} "${VELORN_WINDOWS_DEPS}")
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

# pkg-config looks at the built libraries only, never at the Linux ones.
set(ENV{PKG_CONFIG_LIBDIR} "${VELORN_WINDOWS_DEPS}/lib/pkgconfig")
set(ENV{PKG_CONFIG_SYSROOT_DIR} "")

# Where Wine finds the compiler's own DLLs (libstdc++, libgcc, winpthread)
# when it runs the programs of the build.
set(VELORN_MINGW_RUNTIME_DIRS
  /usr/lib/gcc/${VELORN_MINGW_TRIPLET}/12-posix
  /usr/${VELORN_MINGW_TRIPLET}/lib)
