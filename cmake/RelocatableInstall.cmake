# vygis_set_install_rpath(target): the installed program or library finds the project's
# libraries relative to its own place, so that an installed tree runs from any prefix it
# is installed or unpacked into, with no LD_LIBRARY_PATH. A program looks in the library
# folder seen from its own folder, a library in its own folder. Windows finds the DLLs
# beside the program and needs nothing. A target installed in a folder of its own (a
# module loaded at run time) names that folder with DESTINATION and looks in the library
# folder seen from there.
function(vygis_set_install_rpath target)
  cmake_parse_arguments(ARG "" "DESTINATION" "" ${ARGN})
  if(WIN32)
    return()
  endif()
  if(APPLE)
    set(origin @loader_path)
  else()
    set(origin $ORIGIN)
  endif()
  get_target_property(type ${target} TYPE)
  set(destination "")
  if(ARG_DESTINATION)
    set(destination "${ARG_DESTINATION}")
  elseif(type STREQUAL "EXECUTABLE")
    set(destination "${CMAKE_INSTALL_BINDIR}")
  endif()
  if(NOT destination)
    set(rpath "${origin}")
  elseif(IS_ABSOLUTE "${destination}" OR IS_ABSOLUTE "${CMAKE_INSTALL_LIBDIR}")
    # A folder outside the prefix stays where it is, whatever the prefix.
    set(rpath "${CMAKE_INSTALL_FULL_LIBDIR}")
  else()
    file(RELATIVE_PATH libdir_from_destination
         /prefix/${destination} /prefix/${CMAKE_INSTALL_LIBDIR})
    string(REGEX REPLACE "/$" "" libdir_from_destination "${libdir_from_destination}")
    set(rpath "${origin}/${libdir_from_destination}")
  endif()
  set_target_properties(${target} PROPERTIES INSTALL_RPATH "${rpath}")
endfunction()
