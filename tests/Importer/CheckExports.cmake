# Fails unless the module's dynamic symbol table defines exactly the importer's
# entry, the test-roots hook, the preferences hook and the decoder library's dispatch functions.
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
set(_expected
  CreateBlackmagicRawFactoryInstance CreateBlackmagicRawFactoryInstanceFromBundle
  CreateBlackmagicRawFactoryInstanceFromExeRelativePath CreateBlackmagicRawFactoryInstanceFromPath
  SafeArrayAccessData SafeArrayCreate SafeArrayDestroy SafeArrayGetLBound SafeArrayGetUBound
  SafeArrayGetVartype SafeArrayUnaccessData VariantClear VariantInit twOpenPreferences twSetTestRoots xImportEntry)
list(SORT _expected)
if(NOT _names STREQUAL _expected)
  message(FATAL_ERROR "unexpected exports: ${_names}")
endif()
