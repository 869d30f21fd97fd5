# The tests bench_qxlsx_api_peers and bench_qxlsx_peers: the QXlsx peers, built against
# the engine (PEER peer_qxlsx_api) or against QXlsx (PEER qxlsx), do the work of
# bench_write and "bench_read cells". Both write CELLS cells; the workbooks of both, read
# by the peer, give the cells and characters bench_read counts in ours.
#
#     cmake -DPROGRAMS=<folder of the programs> -DPEER=<prefix> -DSCRATCH=<folder>
#           -DCELLS=<n> -P qxlsx_peer_check.cmake

# The "figure <name> <value>" lines a program prints, in out_var; a failure stops the test.
function(run_for_figures out_var)
  execute_process(COMMAND ${ARGN} RESULT_VARIABLE status OUTPUT_VARIABLE output
                  ERROR_VARIABLE errors)
  if(NOT status EQUAL 0)
    message(FATAL_ERROR "${ARGN}: exit ${status}\n${errors}")
  endif()
  string(REGEX MATCHALL "figure [a-z]+ [0-9.]+" figures "${output}")
  set(${out_var} "${figures}" PARENT_SCOPE)
endfunction()

function(expect_same what expected actual)
  if(NOT "${actual}" STREQUAL "${expected}")
    message(FATAL_ERROR "${what}: expected \"${expected}\", got \"${actual}\"")
  endif()
endfunction()

file(REMOVE_RECURSE "${SCRATCH}")
file(MAKE_DIRECTORY "${SCRATCH}")
set(ours "${SCRATCH}/bench_write.xlsx")
set(peers "${SCRATCH}/${PEER}_write.xlsx")

run_for_figures(written "${PROGRAMS}/bench_write" ${CELLS} "${ours}")
run_for_figures(peer_written "${PROGRAMS}/${PEER}_write" ${CELLS} "${peers}")
expect_same("cells the peer wrote" "${written}" "${peer_written}")

# Every cell of the used range: the data, the title and the ten column headers.
math(EXPR all_cells "${CELLS} + 11")
run_for_figures(read "${PROGRAMS}/bench_read" cells "${ours}")
if(NOT read MATCHES "^figure cells ${all_cells}\\.0+;figure characters [1-9]")
  message(FATAL_ERROR "bench_read of ${CELLS} written cells counted: ${read}")
endif()
run_for_figures(peer_read "${PROGRAMS}/${PEER}_read" "${ours}")
expect_same("the peer's count of bench_write's workbook" "${read}" "${peer_read}")
run_for_figures(peer_read_own "${PROGRAMS}/${PEER}_read" "${peers}")
expect_same("the peer's count of its own workbook" "${read}" "${peer_read_own}")
file(REMOVE_RECURSE "${SCRATCH}")
