# Writes HEADER with the byte size of LIBRARY. The header is rewritten only when
# the size changed, so that a relink of the same size rebuilds nothing.
file(SIZE "${LIBRARY}" _size)
set(_content "#pragma once\n// Generated from the size of ${LIBRARY}.\n#define TW_EXPECTED_DECODER_SIZE ${_size}LL\n")
if(EXISTS "${HEADER}")
  file(READ "${HEADER}" _old)
  if(_old STREQUAL _content)
    return()
  endif()
endif()
file(WRITE "${HEADER}" "${_content}")
