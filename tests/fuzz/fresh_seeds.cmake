# Writes the seeds from the current archive writer and replays them.
file(REMOVE_RECURSE ${OUT})
foreach(cmd "${SEEDS};${OUT}" "${REPLAY_REQUEST};${OUT}/request" "${REPLAY_DIRECTORY};${OUT}/directory")
  execute_process(COMMAND ${cmd} RESULT_VARIABLE rc)
  if(NOT rc EQUAL 0)
    message(FATAL_ERROR "${cmd} failed: ${rc}")
  endif()
endforeach()
