# Writes OUTPUT: SOURCE with the text FROM, which has to be there, changed to TO.
file(READ "${SOURCE}" text)
string(REPLACE "${FROM}" "${TO}" changed "${text}")
if(changed STREQUAL text)
  message(FATAL_ERROR "${SOURCE} does not hold: ${FROM}")
endif()
file(WRITE "${OUTPUT}" "${changed}")
