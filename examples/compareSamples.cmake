# Regenerates the samples into OUTPUT and compares each byte for byte with the one in SHIPPED.
file(REMOVE_RECURSE ${OUTPUT})
file(MAKE_DIRECTORY ${OUTPUT})
execute_process(COMMAND ${GENERATOR} ${OUTPUT} RESULT_VARIABLE result)
if(NOT result EQUAL 0)
  message(FATAL_ERROR "the generator failed: ${result}")
endif()
file(GLOB fresh RELATIVE ${OUTPUT} ${OUTPUT}/*.k2d)
if(NOT fresh)
  message(FATAL_ERROR "the generator wrote no view into ${OUTPUT}")
endif()
foreach(name IN LISTS fresh)
  execute_process(COMMAND ${CMAKE_COMMAND} -E compare_files ${OUTPUT}/${name} ${SHIPPED}/${name}
                  RESULT_VARIABLE different)
  if(different)
    message(FATAL_ERROR "examples/${name} differs from what the generator writes: "
                        "run korel2d-samples examples/ and commit the result")
  endif()
endforeach()
