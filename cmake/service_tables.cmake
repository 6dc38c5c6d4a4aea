# Generates C++ initialisers with the service's names of parameters and algorithms, for programs that need all
# of them. CMake runs again if parameters.txt or a source of jni/ changes.
set(ORLU_PARAMETER_TABLE
  ${PROJECT_SOURCE_DIR}/service/java/com/orlu/orlu3rdalgoservice/tool/tags/parameters.txt)

# orlu_parameter_rows(FILE [ROW_END]): writes the parameters of the table as {section, key, bytes}. With
# ROW_END, writes only the parameters whose row in the table ends with ROW_END.
function(orlu_parameter_rows file)
  set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${ORLU_PARAMETER_TABLE})
  file(STRINGS ${ORLU_PARAMETER_TABLE} rows REGEX "^[a-z].*${ARGN}$")
  set(text "")
  foreach(row IN LISTS rows)
    string(REGEX REPLACE "^([a-z]+) +([A-Za-z0-9_]+) +[A-Z_]+ +([0-9*]+) .*"
      "{\"orlu.algo.\\1\", \"\\2\", \\3},\n" row "${row}")
    string(REPLACE "*" "400" row "${row}")  # *: one double per frame; 400 bytes are fifty doubles
    string(APPEND text "${row}")
  endforeach()
  if(NOT text)
    message(FATAL_ERROR "No rows that end with \"${ARGN}\" in ${ORLU_PARAMETER_TABLE}")
  endif()
  file(CONFIGURE OUTPUT ${file} CONTENT "${text}" @ONLY)
endfunction()

# orlu_algorithm_rows(FILE PATTERN [NAME...]): writes, as strings, the given names and the names that
# jni/PATTERN passes to listHas().
function(orlu_algorithm_rows file pattern)
  file(GLOB sources CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/jni/${pattern})
  set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${sources})
  set(names "")
  foreach(source IN LISTS sources)
    file(STRINGS ${source} lines REGEX "listHas\\(\"")
    string(REGEX MATCHALL "listHas\\(\"[A-Za-z0-9]+" found "${lines}")
    list(APPEND names ${found})
  endforeach()
  if(NOT names)
    message(FATAL_ERROR "No algorithms in jni/${pattern}")
  endif()
  list(TRANSFORM names REPLACE "listHas\\(\"" "")
  list(PREPEND names ${ARGN})
  list(REMOVE_DUPLICATES names)
  list(JOIN names "\",\n\"" names)
  file(CONFIGURE OUTPUT ${file} CONTENT "\"${names}\",\n" @ONLY)
endfunction()
