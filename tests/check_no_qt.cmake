# Fails when a file outside the Qt layer includes a Qt header.
file(GLOB_RECURSE files
  ${ROOT}/src/model/* ${ROOT}/src/spectral/* ${ROOT}/src/constraints/*
  ${ROOT}/src/fitting/* ${ROOT}/src/fileio/* ${ROOT}/src/session/*
  ${ROOT}/src/plot/* ${ROOT}/src/cli/*)
list(FILTER files EXCLUDE REGEX ".*/src/cli/qt/.*")
set(bad "")
foreach(f ${files})
  file(STRINGS ${f} hits REGEX "#[ \t]*include[ \t]*[<\"]Q[A-Za-z]+")
  if(hits)
    list(APPEND bad ${f})
  endif()
endforeach()
if(bad)
  message(FATAL_ERROR "Qt headers outside the Qt layer: ${bad}")
endif()
