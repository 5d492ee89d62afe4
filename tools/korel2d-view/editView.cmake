# Edits the view that SCENE writes with the gestures of SCRIPT through korel2d-view (VIEW) in a
# fresh directory WORK, then checks the file it saved: the header of the library's revision, the
# rectangle "box" with the bounds BOX, and every other line of the dump as it was before.
file(REMOVE_RECURSE ${WORK})
file(MAKE_DIRECTORY ${WORK})
execute_process(COMMAND ${SCENE} scene.k2d WORKING_DIRECTORY ${WORK} COMMAND_ERROR_IS_FATAL ANY)
execute_process(COMMAND ${VIEW} scene.k2d --zoom 2 --edit --events ${SCRIPT} --save out.k2d
                WORKING_DIRECTORY ${WORK} RESULT_VARIABLE status OUTPUT_VARIABLE output ERROR_VARIABLE output)
message("${output}")
if(NOT status EQUAL 0 OR NOT output MATCHES "korel2d-view: saved the view to out.k2d\n")
  message(FATAL_ERROR "the edit did not save out.k2d (exit status ${status})")
endif()
file(READ ${WORK}/out.k2d header LIMIT 14)
if(NOT header STREQUAL "VIEW FILE 3.4\n")
  message(FATAL_ERROR "out.k2d begins with '${header}'")
endif()
foreach(file scene out)
  execute_process(COMMAND ${VIEW} ${file}.k2d --dump WORKING_DIRECTORY ${WORK} OUTPUT_VARIABLE ${file}
                  COMMAND_ERROR_IS_FATAL ANY)
  string(REGEX MATCH "rect name \"box\"[^\n]*" ${file}Box "${${file}}")
  string(REPLACE "${${file}Box}" "" ${file} "${${file}}")
endforeach()
if(NOT outBox MATCHES " bounds ${BOX} ")
  message(FATAL_ERROR "the box is not at ${BOX}: ${outBox}")
endif()
if(NOT scene STREQUAL out)
  message(FATAL_ERROR "more than the box changed:\n${scene}\nbecame\n${out}")
endif()
