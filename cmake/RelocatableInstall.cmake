# vygis_set_install_rpath(target): the installed program or library finds the project's
# libraries relative to its own place, so that an installed tree runs from any prefix it
# is installed or unpacked into, with no LD_LIBRARY_PATH. A program looks in the library
# folder seen from its own folder, a library in its own folder. Windows finds the DLLs
# beside the program and needs nothing.
function(vygis_set_install_rpath target)
  if(WIN32)
    return()
  endif()
  if(APPLE)
    set(origin @loader_path)
  else()
    set(origin $ORIGIN)
  endif()
  get_target_property(type ${target} TYPE)
  if(NOT type STREQUAL "EXECUTABLE")
    set(rpath "${origin}")
  elseif(IS_ABSOLUTE "${CMAKE_INSTALL_BINDIR}" OR IS_ABSOLUTE "${CMAKE_INSTALL_LIBDIR}")
    # A folder outside the prefix stays where it is, whatever the prefix.
    set(rpath "${CMAKE_INSTALL_FULL_LIBDIR}")
  else()
    file(RELATIVE_PATH libdir_from_bindir
         /prefix/${CMAKE_INSTALL_BINDIR} /prefix/${CMAKE_INSTALL_LIBDIR})
    set(rpath "${origin}/${libdir_from_bindir}")
  endif()
  set_target_properties(${target} PROPERTIES INSTALL_RPATH "${rpath}")
endfunction()
