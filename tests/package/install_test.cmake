# Installs the build into a fresh prefix and uses it as a user would: runs the installed
# tool with no library path set, checks the header layout, and configures, builds and runs
# a program that finds the package with find_package. Run by CTest with -P; the
# variables come from tests/package/CMakeLists.txt.

function(fail what output)
  message(FATAL_ERROR "${what}\n${output}")
endfunction()

# run(<what> COMMAND ...): runs the command with no library search path of the
# environment's, so that only what the installed files say finds the libraries, and
# fails the test with its output unless it exits 0. The output is left in RUN_OUTPUT.
function(run what)
  cmake_parse_arguments(ARG "" "" "COMMAND" ${ARGN})
  execute_process(
    COMMAND ${CMAKE_COMMAND} -E env --unset=LD_LIBRARY_PATH --unset=DYLD_LIBRARY_PATH
            QT_QPA_PLATFORM=offscreen ${ARG_COMMAND}
    RESULT_VARIABLE status OUTPUT_VARIABLE out ERROR_VARIABLE err)
  if(NOT status EQUAL 0)
    fail("${what} failed (${status})" "${out}${err}")
  endif()
  set(RUN_OUTPUT "${out}" PARENT_SCOPE)
endfunction()

file(REMOVE_RECURSE "${PREFIX}" "${CONSUMER_BUILD_DIR}")
run("cmake --install into ${PREFIX}"
  COMMAND ${CMAKE_COMMAND} --install "${BUILD_DIR}" --prefix "${PREFIX}" --config "${CONFIG}")

# The header layout: the library's folder, and one folder under it per library.
set(includes "${PREFIX}/${INCLUDEDIR}/vygisutil")
set(expected_headers vygisutil.h vygisutil_export.h
    host/tsmap.h host/vygishost_export.h xlsx/xlsxdocument.h xlsx/xlsx_export.h)
if(WITH_GDAL)
  list(APPEND expected_headers gdal/tsgdal.h gdal/vygisgdal_export.h)
endif()
foreach(header IN LISTS expected_headers)
  if(NOT EXISTS "${includes}/${header}")
    fail("${includes}/${header} was not installed" "")
  endif()
endforeach()
file(GLOB top_headers RELATIVE "${includes}" "${includes}/*.h")
list(SORT top_headers)
if(NOT top_headers STREQUAL "vygisutil.h;vygisutil_export.h")
  fail("headers of other libraries among the library's own in ${includes}" "${top_headers}")
endif()

if(WITH_TOOL)
  set(tool "${PREFIX}/${BINDIR}/vygis")
  set(samples "${PREFIX}/${DATADIR}/vygisutil/samples")
  run("the installed tool" COMMAND "${tool}" --version)
  if(NOT RUN_OUTPUT STREQUAL "vygis ${VERSION}\n")
    fail("the installed tool's version reads otherwise" "${RUN_OUTPUT}")
  endif()
  run("the installed tool's dump" COMMAND "${tool}" dump "${samples}/cities.xlsx")
  if(NOT RUN_OUTPUT MATCHES "Paris")
    fail("the installed tool's dump of cities.xlsx lacks Paris" "${RUN_OUTPUT}")
  endif()
  # The layer commands are a module the tool loads from the installed tree.
  file(REMOVE "${PREFIX}/cities.xlsx")
  run("the installed tool's export"
    COMMAND "${tool}" export "${samples}/cities.geojson" "${PREFIX}/cities.xlsx")
  if(NOT EXISTS "${PREFIX}/cities.xlsx")
    fail("the installed tool's export wrote no ${PREFIX}/cities.xlsx" "")
  endif()
endif()

# Each installed library finds the others it needs by itself, whoever loads it.
find_program(LDD ldd)
if(LDD AND NOT WIN32 AND NOT APPLE)
  file(GLOB libraries "${PREFIX}/${LIBDIR}/*.so" "${PREFIX}/${LIBDIR}/vygisutil/*.so")
  foreach(library IN LISTS libraries)
    run("ldd ${library}" COMMAND "${LDD}" "${library}")
    if(RUN_OUTPUT MATCHES "not found")
      fail("${library} does not find every library it needs" "${RUN_OUTPUT}")
    endif()
  endforeach()
  # The tool starts without GDAL: only its layer module brings it.
  if(WITH_TOOL)
    run("ldd ${tool}" COMMAND "${LDD}" "${tool}")
    if(RUN_OUTPUT MATCHES "not found|libgdal|vygisutil-gdal")
      fail("${tool} needs GDAL or a library it does not find" "${RUN_OUTPUT}")
    endif()
  endif()
endif()

run("configuring the program that uses the package"
  COMMAND ${CMAKE_COMMAND} -S "${CONSUMER_SOURCE_DIR}" -B "${CONSUMER_BUILD_DIR}"
          -G "${GENERATOR}" "-DCMAKE_CXX_COMPILER=${CXX_COMPILER}" "-DCMAKE_BUILD_TYPE=${CONFIG}"
          "-DCMAKE_PREFIX_PATH=${PREFIX}" "-DQt5_DIR=${QT5_DIR}"
          "-DCMAKE_EXE_LINKER_FLAGS=${CONSUMER_LINK_FLAGS}" "-DVYGIS_EXPECTED_VERSION=${VERSION}")
run("building the program that uses the package"
  COMMAND ${CMAKE_COMMAND} --build "${CONSUMER_BUILD_DIR}" --config "${CONFIG}")
file(GLOB_RECURSE consumer "${CONSUMER_BUILD_DIR}/consumer" "${CONSUMER_BUILD_DIR}/consumer.exe")
if(NOT consumer)
  fail("the program that uses the package was not built in ${CONSUMER_BUILD_DIR}" "")
endif()
run("the program that uses the package" COMMAND ${consumer})
if(NOT RUN_OUTPUT STREQUAL "roads-1\n")
  fail("the program that uses the package printed otherwise" "${RUN_OUTPUT}")
endif()

# The version check: before 1.0 only the installed minor version is accepted, from 1.0 on
# any version of the same major one up to the installed one.
string(REGEX MATCH "^([0-9]+)\\.([0-9]+)" _ "${VERSION}")
set(major ${CMAKE_MATCH_1})
set(minor ${CMAKE_MATCH_2})
math(EXPR next_major "${major} + 1")
math(EXPR next_minor "${minor} + 1")
set(requests "${major}.${minor}=TRUE" "${major}.${next_minor}=FALSE" "${next_major}.0=FALSE")
if(major EQUAL 0 AND minor GREATER 0)
  list(APPEND requests "0.0=FALSE")
elseif(major GREATER 0)
  list(APPEND requests "${major}.0=TRUE")
endif()
foreach(request IN LISTS requests)
  string(REGEX MATCH "^(([0-9]+)\\.([0-9]+))=(.*)$" _ "${request}")
  set(PACKAGE_FIND_VERSION ${CMAKE_MATCH_1})
  set(PACKAGE_FIND_VERSION_MAJOR ${CMAKE_MATCH_2})
  set(PACKAGE_FIND_VERSION_MINOR ${CMAKE_MATCH_3})
  set(expected ${CMAKE_MATCH_4})
  unset(PACKAGE_VERSION_COMPATIBLE)
  include("${PREFIX}/${LIBDIR}/cmake/VyGisUtil/VyGisUtilConfigVersion.cmake")
  if(NOT "${PACKAGE_VERSION_COMPATIBLE}" STREQUAL "${expected}")
    fail("the package ${VERSION} answers compatible=${PACKAGE_VERSION_COMPATIBLE} to a request for ${PACKAGE_FIND_VERSION}" "")
  endif()
endforeach()
