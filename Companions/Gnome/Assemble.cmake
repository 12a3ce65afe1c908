# Makes the companion's folder of its parts: cmake -D OUTPUT=... -D UUID=... -D PROGRAM=...
# -D VERSION=... -P Assemble.cmake. PROGRAM is the path of the only program that it talks to, absolute
# or seen from the folder.

cmake_minimum_required(VERSION 3.22)

set(parts Checks Signals Keys Windows ProgramLink Outbox ToldWindows Displays DragWatch FrameWriter Overlay
  BarItem OwnWindows MotionWish Companion)
set(icons "${CMAKE_CURRENT_LIST_DIR}/../../Packaging/icons")

string(REPLACE "\\" "\\\\" program "${PROGRAM}")
string(REPLACE "'" "\\'" program "${program}")
set(core "\n/** The program that is believed: its path, absolute or seen from this folder. */\n")
string(APPEND core "const PROGRAM = '${program}';\n")
foreach(part IN LISTS parts)
  file(READ "${CMAKE_CURRENT_LIST_DIR}/${part}.js" text)
  string(APPEND core "${text}")
endforeach()

function(write_form form file)
  file(READ "${CMAKE_CURRENT_LIST_DIR}/head-${form}.js" head)
  file(READ "${CMAKE_CURRENT_LIST_DIR}/tail-${form}.js" tail)
  file(WRITE "${OUTPUT}/${file}" "${head}${core}${tail}")
endfunction()

write_form(module extension.js)
write_form(legacy __init__.js)
configure_file("${CMAKE_CURRENT_LIST_DIR}/metadata.json.in" "${OUTPUT}/metadata.json" @ONLY)
# The shell's button bears what the status item bears elsewhere.
configure_file("${icons}/tilewright-cup-and-saucer-symbolic.svg"
  "${OUTPUT}/icons/tilewright-symbolic.svg" COPYONLY)
configure_file("${icons}/tilewright-cup-and-saucer-fill-symbolic.svg"
  "${OUTPUT}/icons/tilewright-awake-symbolic.svg" COPYONLY)
