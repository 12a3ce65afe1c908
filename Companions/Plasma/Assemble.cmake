# Makes a C++ source of the companion's parts: cmake -D OUTPUT=... -P Assemble.cmake.

cmake_minimum_required(VERSION 3.22)

set(parts Kwin Program Keys FrameWriter DragWatch Displays Companion Panel Errand)
set(script "")
foreach(part IN LISTS parts)
  file(READ "${CMAKE_CURRENT_LIST_DIR}/${part}.js" text)
  string(APPEND script "${text}\n")
endforeach()

if(OUTPUT MATCHES "\\.js$")
  file(WRITE "${OUTPUT}" "${script}")
else()
  file(WRITE "${OUTPUT}" "#include \"KWinCompanionScript.h\"

namespace tilewright {

QByteArray kwinCompanionScript() {
    return R\"companion(${script})companion\";
}

} // namespace tilewright
")
endif()
