# Fails unless the DLL MODULE exports exactly the names in EXPORTS (a
# list), as the toolchain's OBJDUMP reads its export table.
execute_process(COMMAND ${OBJDUMP} -p ${MODULE} OUTPUT_VARIABLE table RESULT_VARIABLE result)
if(NOT result EQUAL 0)
  message(FATAL_ERROR "${OBJDUMP} cannot read ${MODULE}")
endif()
# The names follow the heading of the name pointer table, one a line as
# "\t[   0] name", up to the first empty line.
string(FIND "${table}" "[Ordinal/Name Pointer] Table" start)
if(start EQUAL -1)
  message(FATAL_ERROR "${MODULE} exports nothing; expected: ${EXPORTS}")
endif()
string(SUBSTRING "${table}" ${start} -1 table)
string(REGEX REPLACE "\n\n.*" "" table "${table}")
string(REGEX MATCHALL "\\[ *[0-9]+\\] [^\n]+" entries "${table}")
set(names "")
foreach(entry ${entries})
  string(REGEX REPLACE "^\\[ *[0-9]+\\] " "" name "${entry}")
  list(APPEND names "${name}")
endforeach()
if(NOT names STREQUAL EXPORTS)
  message(FATAL_ERROR "${MODULE} exports '${names}', expected '${EXPORTS}'")
endif()
message(STATUS "${MODULE} exports ${names}")
