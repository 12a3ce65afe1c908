# What makes a stray write or a wrong address end the program instead of doing as somebody else says.
# In every build but those under sanitizers, which look for the same themselves; what a compiler or a
# processor does not know is left out.
include(CheckCXXCompilerFlag)
include(CheckPIESupported)
check_pie_supported(LANGUAGES CXX)

set(TILEWRIGHT_HARDENED FALSE)
if(NOT TILEWRIGHT_SANITIZE AND NOT TILEWRIGHT_BUILD_FUZZERS)
  foreach(flag -fstack-protector-strong -fstack-clash-protection -fcf-protection)
    string(MAKE_C_IDENTIFIER "TILEWRIGHT_KNOWS${flag}" known)
    check_cxx_compiler_flag(${flag} ${known})
    if(${known})
      target_compile_options(tilewright_options INTERFACE ${flag})
    endif()
  endforeach()
  # Needs the optimiser. Some compilers define it themselves, as something less.
  target_compile_options(tilewright_options INTERFACE
    "$<$<CONFIG:Release,RelWithDebInfo,MinSizeRel>:-U_FORTIFY_SOURCE;-D_FORTIFY_SOURCE=3>")
  if(NOT APPLE)
    target_link_options(tilewright_options INTERFACE LINKER:-z,relro LINKER:-z,now)
    if(CMAKE_BUILD_TYPE MATCHES "^(Release|RelWithDebInfo|MinSizeRel)$")
      set(TILEWRIGHT_HARDENED TRUE)
    endif()
  endif()
endif()
