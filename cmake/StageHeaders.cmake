# Copies the public headers to where users find them, with includes as users write them:
#
#   cmake -DHEADERS=LIST-FILE -DOUT=DIRECTORY -DSTAMP=FILE -P StageHeaders.cmake
#
# LIST-FILE has lines "SOURCE|NAME", where NAME is the path below fleetkit/. A header that did not
# change keeps its time.
file(STRINGS "${HEADERS}" lines)
foreach(line IN LISTS lines)
  string(REPLACE "|" ";" pair "${line}")
  list(GET pair 0 source)
  list(GET pair 1 name)
  file(READ "${source}" text)
  string(REGEX REPLACE "#include \"(domain|protocol|Product/Technic)/" "#include \"fleetkit/\\1/"
         text "${text}")
  string(REPLACE "#include \"device/" "#include \"fleetkit/" text "${text}")
  set(target "${OUT}/fleetkit/${name}")
  set(staged "")
  if(EXISTS "${target}")
    file(READ "${target}" staged)
  endif()
  if(NOT staged STREQUAL text)
    file(WRITE "${target}" "${text}")
  endif()
endforeach()
file(TOUCH "${STAMP}")
