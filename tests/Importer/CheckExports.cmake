# Fails unless the module's dynamic symbol table defines exactly the importer's
# entry and the test-roots hook.
execute_process(COMMAND ${NM} -D --defined-only ${MODULE}
                OUTPUT_VARIABLE _symbols RESULT_VARIABLE _rc)
if(NOT _rc EQUAL 0)
  message(FATAL_ERROR "nm failed on ${MODULE}")
endif()
string(REGEX MATCHALL "[^\n]+" _lines "${_symbols}")
set(_names "")
foreach(_line ${_lines})
  string(REGEX REPLACE "^[0-9a-fA-F]* *[A-Za-z] +" "" _name "${_line}")
  list(APPEND _names ${_name})
endforeach()
list(SORT _names)
if(NOT _names STREQUAL "twSetTestRoots;xImportEntry")
  message(FATAL_ERROR "unexpected exports: ${_names}")
endif()
