# How every target of this project is compiled, and how a package is declared.

add_library(tilewright_options INTERFACE)
target_compile_features(tilewright_options INTERFACE cxx_std_20)
# What others have a tool generate, C all of it, keeps no rules of ours.
target_compile_options(tilewright_options INTERFACE "$<$<COMPILE_LANGUAGE:CXX,OBJCXX>:\
-Wall;-Wextra;-Wpedantic;-Wconversion;-Wsign-conversion;-Wshadow;-Wnon-virtual-dtor;\
-Wold-style-cast;-Woverloaded-virtual;-Wcast-align;-Wnull-dereference;-Wimplicit-fallthrough>")
target_compile_definitions(tilewright_options INTERFACE
  QT_NO_CAST_FROM_ASCII QT_NO_CAST_TO_ASCII QT_NO_KEYWORDS QT_NO_FOREACH
  QT_NO_URL_CAST_FROM_STRING)
# A product and a sum round as they are written, on processors that could do both in one step, too:
# where a window goes does not depend on the processor.
target_compile_options(tilewright_options INTERFACE -ffp-contract=off)
if(TILEWRIGHT_WARNINGS_AS_ERRORS)
  target_compile_options(tilewright_options INTERFACE -Werror)
endif()
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  # Flow-based guesses inside inlined library code: wrong too often at -O2 with sanitizers.
  target_compile_options(tilewright_options INTERFACE -Wno-null-dereference)
  if(TILEWRIGHT_SANITIZE)
    target_compile_options(tilewright_options INTERFACE -Wno-maybe-uninitialized)
  endif()
endif()
include(TilewrightHardening)
if(TILEWRIGHT_SANITIZE)
  add_compile_options(-fsanitize=address,undefined -fno-sanitize-recover=undefined
    -fno-omit-frame-pointer)
  add_link_options(-fsanitize=address,undefined)
endif()
if(TILEWRIGHT_BUILD_FUZZERS)
  # The code under the fuzzer has to tell it which ways it takes.
  add_compile_options(-fsanitize=fuzzer-no-link,address,undefined
    -fno-sanitize-recover=undefined)
  add_link_options(-fsanitize=address,undefined)
endif()

set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)

find_program(TILEWRIGHT_CCACHE ccache)
if(TILEWRIGHT_CCACHE)
  # What one checkout has compiled serves another one elsewhere.
  set(CMAKE_CXX_COMPILER_LAUNCHER "${CMAKE_COMMAND}" -E env
    "CCACHE_BASEDIR=${PROJECT_SOURCE_DIR}" CCACHE_NOHASHDIR=1 "${TILEWRIGHT_CCACHE}")
endif()

# Builds what the sources of the packages need to be read by a static checker: generated headers.
add_custom_target(lint_prerequisites)

# tilewright_package(<target> <folder> SOURCES <files...> [DEPENDS <targets...>])
#
# Declares a package whose headers live in Sources/<folder>, included as <folder/Header.h>. Only a
# target that depends on the package can include them: each package gets an include folder of its
# own in the build tree, which holds nothing but a link to its headers.
function(tilewright_package target folder)
  cmake_parse_arguments(PARSE_ARGV 2 package "" "" "SOURCES;DEPENDS")
  set(source_folder "${CMAKE_CURRENT_SOURCE_DIR}/Sources/${folder}")
  if(NOT IS_DIRECTORY "${source_folder}")
    # Backends and the application declare themselves in their own folder.
    set(source_folder "${CMAKE_CURRENT_SOURCE_DIR}")
  endif()
  set(include_folder "${CMAKE_BINARY_DIR}/include/${target}")
  file(MAKE_DIRECTORY "${include_folder}")
  if(NOT EXISTS "${include_folder}/${folder}")
    file(CREATE_LINK "${source_folder}" "${include_folder}/${folder}" SYMBOLIC)
  endif()
  list(TRANSFORM package_SOURCES PREPEND "${source_folder}/")
  add_library(${target} STATIC ${package_SOURCES})
  set_target_properties(${target} PROPERTIES AUTOMOC ON)
  target_include_directories(${target} PUBLIC "${include_folder}")
  target_link_libraries(${target} PUBLIC ${package_DEPENDS} PRIVATE tilewright_options)
  add_dependencies(lint_prerequisites ${target})
endfunction()
