# Included by bench/CMakeLists.txt: the QXlsx peers, qxlsx_write and qxlsx_read, built
# where the user gives a QXlsx source tree. QXlsx is not packaged for Debian, so there is
# nothing to find: without a tree the peers are not built and bench.py says it skipped them.
#
#     cmake ... -DVYGIS_BUILD_BENCHMARKS=ON -DVYGIS_QXLSX_SOURCE_DIR=/path/to/QXlsx
#
# The tree is QXlsx's repository: the folder holding QXlsx/CMakeLists.txt. QXlsx is built
# in Release, whatever this build's type, in a project of its own (peers/qxlsx), so that its
# cache variables and install rules stay out of this build.
set(VYGIS_QXLSX_SOURCE_DIR "" CACHE PATH
    "A QXlsx source tree (holding QXlsx/CMakeLists.txt) to build the QXlsx benchmark peers from")

set(QXLSX_PEERS "${CMAKE_CURRENT_BINARY_DIR}/qxlsx_write" "${CMAKE_CURRENT_BINARY_DIR}/qxlsx_read")
if(NOT VYGIS_QXLSX_SOURCE_DIR)
  # Peers left from an earlier configuration would be run as if this one had built them.
  file(REMOVE ${QXLSX_PEERS})
  message(STATUS "QXlsx peers not built: no VYGIS_QXLSX_SOURCE_DIR given")
  return()
endif()

if(NOT EXISTS "${VYGIS_QXLSX_SOURCE_DIR}/QXlsx/CMakeLists.txt")
  message(FATAL_ERROR "VYGIS_QXLSX_SOURCE_DIR \"${VYGIS_QXLSX_SOURCE_DIR}\" is not a QXlsx "
          "source tree: it has no QXlsx/CMakeLists.txt (give the folder that holds QXlsx/, "
          "or an empty value to build without the QXlsx peers)")
endif()
# QXlsx reads and writes its zip packages with Qt's private zip classes: it links
# Qt5::GuiPrivate, which Qt defines only where its private headers are installed.
if(NOT TARGET Qt5::GuiPrivate)
  message(FATAL_ERROR "QXlsx needs Qt's private headers (Qt5::GuiPrivate), which are not "
          "installed; on Debian they are in qtbase5-private-dev")
endif()

include(ExternalProject)
ExternalProject_Add(qxlsx_peers
  SOURCE_DIR "${CMAKE_CURRENT_SOURCE_DIR}/peers/qxlsx"
  BINARY_DIR "${CMAKE_CURRENT_BINARY_DIR}/qxlsx-peers"
  CMAKE_ARGS
    -DCMAKE_BUILD_TYPE=Release
    "-DQXLSX_SOURCE_DIR=${VYGIS_QXLSX_SOURCE_DIR}"
    "-DQt5_DIR=${Qt5_DIR}"
    "-DCMAKE_CXX_COMPILER=${CMAKE_CXX_COMPILER}"
    "-DCMAKE_CXX_COMPILER_LAUNCHER=${CMAKE_CXX_COMPILER_LAUNCHER}"
    "-DCMAKE_RUNTIME_OUTPUT_DIRECTORY=${CMAKE_CURRENT_BINARY_DIR}"
  INSTALL_COMMAND ""
  # The peers' sources are this project's: rebuilt when they change.
  BUILD_ALWAYS ON
  BUILD_BYPRODUCTS ${QXLSX_PEERS})
message(STATUS "QXlsx peers: built from ${VYGIS_QXLSX_SOURCE_DIR}")
if(VYGIS_BUILD_TESTS)
  # QXlsx writes the cells ours does and reads back what ours reads.
  add_test(NAME bench_qxlsx_peers
    COMMAND ${CMAKE_COMMAND} -DPROGRAMS=$<TARGET_FILE_DIR:bench_write> -DPEER=qxlsx
            -DSCRATCH=${CMAKE_CURRENT_BINARY_DIR}/qxlsx-check -DCELLS=20000
            -P ${CMAKE_CURRENT_SOURCE_DIR}/peers/qxlsx_peer_check.cmake)
endif()
