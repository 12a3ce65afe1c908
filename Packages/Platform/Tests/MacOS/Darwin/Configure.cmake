# Configures SOURCE for macOS with PRESET in BUILD, and fails unless a bundle comes of it.
set(folder "${CMAKE_CURRENT_LIST_DIR}")
file(REMOVE_RECURSE "${BUILD}")
execute_process(
  COMMAND "${CMAKE_COMMAND}" --preset "${PRESET}" -S "${SOURCE}" -B "${BUILD}"
    "-DCMAKE_TOOLCHAIN_FILE=${folder}/Darwin.cmake" "-DCMAKE_MODULE_PATH=${folder}/Modules"
    "-DHOST_RCC=${RCC}" "-DMACDEPLOYQT=${CMAKE_COMMAND}" -DCMAKE_LINK_LIBRARIES_ONLY_TARGETS=ON
  RESULT_VARIABLE result OUTPUT_VARIABLE output ERROR_VARIABLE output)
if(result)
  message(FATAL_ERROR "${output}")
endif()
file(READ "${BUILD}/build.ninja" rules)
if(NOT rules MATCHES "Tilewright[.]app/Contents/MacOS/Tilewright")
  message(FATAL_ERROR "no bundle is built")
endif()
