# The library's ABI is the two classes of vygisutil.h: every dynamic symbol the shared
# library defines belongs to VyExcelUtil or VyUniversalFunction. Run by CTest with -P,
# given LIBRARY and NM; says "Skipped" (which CTest counts as skipped) without nm.

if(NOT NM OR NOT EXISTS "${NM}")
  message("Skipped: no nm to list the dynamic symbols of ${LIBRARY}")
  return()
endif()
execute_process(COMMAND "${NM}" --dynamic --demangle --defined-only "${LIBRARY}"
  RESULT_VARIABLE status OUTPUT_VARIABLE symbols ERROR_VARIABLE err)
if(NOT status EQUAL 0)
  message(FATAL_ERROR "${NM} could not list the dynamic symbols of ${LIBRARY}:\n${err}")
endif()

string(REPLACE "\n" ";" lines "${symbols}")
set(api_symbols 0)
set(strays "")
foreach(line IN LISTS lines)
  # "<address> <type> <name>"
  if(NOT line MATCHES "^[0-9a-fA-F]+ [A-Za-z] (.+)$")
    continue()
  endif()
  set(name "${CMAKE_MATCH_1}")
  if(name MATCHES "^(VyExcelUtil|VyUniversalFunction)::")
    math(EXPR api_symbols "${api_symbols} + 1")
  else()
    string(APPEND strays "  ${name}\n")
  endif()
endforeach()
if(strays)
  message(FATAL_ERROR "${LIBRARY} exports symbols outside its two classes:\n${strays}")
endif()
if(api_symbols EQUAL 0)
  message(FATAL_ERROR "${LIBRARY} exports none of the functions of its two classes:\n${symbols}")
endif()
message("${LIBRARY}: ${api_symbols} symbols, all of VyExcelUtil and VyUniversalFunction")
