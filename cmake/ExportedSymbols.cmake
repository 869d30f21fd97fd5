# vygis_limit_exported_symbols(target map): the shared library exports only what the
# linker version script `map` lists. Hidden visibility alone leaves the standard
# library's template instances (libstdc++ declares namespace std with default
# visibility) and type information of other libraries' classes in the dynamic symbol
# table, where they become part of the library's ABI by accident. Applied with linkers
# that take GNU version scripts (GNU ld, gold, lld); MSVC exports only what is marked
# for export and needs nothing.
include(CheckLinkerFlag)

function(vygis_limit_exported_symbols target map)
  check_linker_flag(CXX "LINKER:--version-script=${map}" VYGIS_LINKER_TAKES_VERSION_SCRIPT)
  if(NOT VYGIS_LINKER_TAKES_VERSION_SCRIPT)
    return()
  endif()
  target_link_options(${target} PRIVATE "LINKER:--version-script=${map}")
  set_property(TARGET ${target} APPEND PROPERTY LINK_DEPENDS "${map}")
endfunction()
