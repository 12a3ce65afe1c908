# A system called Darwin, without its compilers: what CMake files do there, up to the build files.
set(CMAKE_SYSTEM_NAME Darwin)
set(CMAKE_SYSTEM_VERSION 22.0)
set(CMAKE_SYSTEM_PROCESSOR arm64)
# There is nothing to link with.
set(CMAKE_TRY_COMPILE_TARGET_TYPE STATIC_LIBRARY)
set(CMAKE_CXX_COMPILER_WORKS TRUE)
# Nor are there kits to look up for each architecture.
if(CMAKE_OSX_ARCHITECTURES MATCHES ";")
  set(CMAKE_APPLE_ARCH_SYSROOTS "/;/")
endif()
