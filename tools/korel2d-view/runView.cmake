# Runs korel2d-view (VIEW) in a fresh directory WORK with ARGS, the arguments separated by '|', and
# checks its exit status against EXPECT and its output against each of the MATCH_COUNT regular
# expressions MATCH0, MATCH1, ... With PICTURE, the checker (CHECK) then inspects that PNG as a
# picture of the sample panel at ZOOM.
# NO_DISPLAY hides any X server from the tool.
file(REMOVE_RECURSE ${WORK})
file(MAKE_DIRECTORY ${WORK})
string(REPLACE "|" ";" args "${ARGS}")
if(NO_DISPLAY)
  unset(ENV{DISPLAY})
endif()
execute_process(COMMAND ${VIEW} ${args} WORKING_DIRECTORY ${WORK}
                RESULT_VARIABLE status OUTPUT_VARIABLE output ERROR_VARIABLE output)
message("${output}")
if(NOT status STREQUAL EXPECT)
  message(FATAL_ERROR "exit status ${status}, expected ${EXPECT}")
endif()
if(MATCH_COUNT GREATER 0)
  math(EXPR last "${MATCH_COUNT} - 1")
  foreach(index RANGE ${last})
    if(NOT output MATCHES "${MATCH${index}}")
      message(FATAL_ERROR "the output does not say '${MATCH${index}}'")
    endif()
  endforeach()
endif()
if(PICTURE)
  if(NOT ZOOM)
    set(ZOOM 1)
  endif()
  execute_process(COMMAND ${CHECK} ${WORK}/${PICTURE} ${ZOOM} RESULT_VARIABLE checked)
  if(NOT checked EQUAL 0)
    message(FATAL_ERROR "${PICTURE} is not the sample panel")
  endif()
endif()
