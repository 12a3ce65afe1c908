# Makes of an installed bundle one that runs elsewhere: checks what is linked, then signs.
#
# cmake -DBUNDLE=... -DMINIMUM=13.0 -DIDENTITY=... -DENTITLEMENTS=... [-DTOOLS=folder] -P Finish.cmake
#
# IDENTITY is - for a signature that is nobody's. TOOLS stands before PATH for codesign and otool.

cmake_minimum_required(VERSION 3.22)

if(TOOLS)
  set(ENV{PATH} "${TOOLS}:$ENV{PATH}")
endif()

function(run)
  execute_process(COMMAND ${ARGN} RESULT_VARIABLE result)
  if(result)
    string(REPLACE ";" " " command "${ARGN}")
    message(FATAL_ERROR "failed: ${command}")
  endif()
endfunction()

# All code of the bundle but its main executable, the innermost first.
file(GLOB_RECURSE files LIST_DIRECTORIES false "${BUNDLE}/Contents/*")
set(code "")
foreach(file IN LISTS files)
  if(IS_SYMLINK "${file}")
    continue()
  endif()
  execute_process(COMMAND otool -h "${file}" OUTPUT_VARIABLE header ERROR_QUIET)
  if(header MATCHES "Mach header")
    list(APPEND code "${file}")
  endif()
endforeach()
set(main "${BUNDLE}/Contents/MacOS/Tilewright")
if(NOT main IN_LIST code)
  message(FATAL_ERROR "${main} is no program")
endif()

# Whatever is linked is the system's, or in the bundle; nothing needs a newer system than the bundle.
foreach(file IN LISTS code)
  execute_process(COMMAND otool -L "${file}" OUTPUT_VARIABLE links)
  string(REGEX MATCHALL "\n[ \t]+[^\n(]+" links "\n${links}")
  foreach(link IN LISTS links)
    string(STRIP "${link}" link)
    if(link MATCHES "^(/usr/lib/|/System/Library/)")
      continue()
    endif()
    if(NOT link MATCHES "^@(rpath|executable_path/../Frameworks|loader_path/../Frameworks)/(.+)$")
      message(FATAL_ERROR "${file} is linked to ${link}, which other computers do not have")
    endif()
    if(NOT EXISTS "${BUNDLE}/Contents/Frameworks/${CMAKE_MATCH_2}"
        AND NOT file MATCHES "/${CMAKE_MATCH_2}$")
      message(FATAL_ERROR "${file} is linked to ${link}, which is not in the bundle")
    endif()
  endforeach()
  execute_process(COMMAND otool -l "${file}" OUTPUT_VARIABLE commands)
  string(REGEX MATCHALL "minos [0-9.]+" minimums "${commands}")
  foreach(minimum IN LISTS minimums)
    string(REPLACE "minos " "" minimum "${minimum}")
    if(minimum VERSION_GREATER MINIMUM)
      message(FATAL_ERROR "${file} needs macOS ${minimum}, and the bundle says ${MINIMUM}")
    endif()
  endforeach()
  if(commands MATCHES "LC_RPATH[^@]*path (/[^\n(]+)")
    message(FATAL_ERROR "${file} looks for libraries in ${CMAKE_MATCH_1}")
  endif()
endforeach()

# Each piece by itself, without entitlements: only the program's own process has any.
set(options --force --options runtime --sign "${IDENTITY}")
set(entitlements "")
if(IDENTITY STREQUAL "-")
  # Its libraries bear no team that the system could compare.
  set(entitlements --entitlements "${ENTITLEMENTS}")
else()
  list(APPEND options --timestamp)
endif()
list(REMOVE_ITEM code "${main}")
foreach(file IN LISTS code)
  # A framework is signed as a whole.
  if(file MATCHES "^(.*[.]framework)/Versions/([^/]+)/[^/]+$")
    set(file "${CMAKE_MATCH_1}/Versions/${CMAKE_MATCH_2}")
  endif()
  run(codesign ${options} "${file}")
endforeach()
run(codesign ${options} ${entitlements} "${BUNDLE}")
run(codesign --verify --strict --deep "${BUNDLE}")
