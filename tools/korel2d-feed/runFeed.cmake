# Runs the feeder (FEED) for three seconds beside korel2d-view (VIEW) on the feed panel (SAMPLE),
# in a fresh directory WORK. The view starts half a second later, so that the segment exists
# when its sources open, and runs animated for a second, while the feeder writes. Checks that
# the values of the segment and of the datagrams arrived, each in its byte order, and that the
# feeder removed its segment at the end.
file(REMOVE_RECURSE ${WORK})
file(MAKE_DIRECTORY ${WORK})
# A pipeline is how CMake runs two programs side by side; the feeder reports into a file.
execute_process(COMMAND sh -c "exec \"$@\" > feed.txt" feed ${FEED} --seconds 3
                COMMAND sh -c "sleep 0.5; exec \"$@\"" view ${VIEW} ${SAMPLE} --vars --anim --frames 100
                WORKING_DIRECTORY ${WORK} RESULTS_VARIABLE statuses OUTPUT_VARIABLE output ERROR_VARIABLE output)
file(READ ${WORK}/feed.txt fed)
message("${fed}${output}")
if(NOT statuses STREQUAL "0;0")
  message(FATAL_ERROR "exit statuses ${statuses} of the feeder and the view, expected 0;0")
endif()
# A sine within -1..1 and not 0: a float read in the wrong byte order comes out as a tiny number
# printed as 0.000000, or as a huge one. The feeder writes 100 times a second for 3 seconds, so a
# count read in the wrong order, 2^24 times too large, is no longer one of up to three digits.
set(sine "-?(0\\.[0-9]*[1-9][0-9]*|1\\.0+)\n")
set(count "[1-9][0-9]?[0-9]?\n")
foreach(regex "\n  float SINE = ${sine}" "\n  float UDP_SINE = ${sine}" "\n  int32 COUNTER = ${count}"
              "\n  int32 UDP_COUNTER = ${count}" "\n  int32 HIGH = [01]\n")
  if(NOT output MATCHES "${regex}")
    message(FATAL_ERROR "the output does not say '${regex}'")
  endif()
endforeach()
execute_process(COMMAND ipcs -m OUTPUT_VARIABLE segments)
if(segments MATCHES "0x4b324446")
  message(FATAL_ERROR "the feeder left its segment behind:\n${segments}")
endif()
