# Runs COMMAND and fails unless it fails too, and says why in words that match REASON.
string(REPLACE "|" ";" command "${COMMAND}")
execute_process(COMMAND ${command} RESULT_VARIABLE result OUTPUT_VARIABLE output ERROR_VARIABLE output)
if(result EQUAL 0)
  message(FATAL_ERROR "the fault went unnoticed:\n${output}")
endif()
if(NOT output MATCHES "${REASON}")
  message(FATAL_ERROR "failed for another reason than \"${REASON}\":\n${output}")
endif()
