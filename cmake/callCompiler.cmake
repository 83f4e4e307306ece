# cmake -DTOP=FOLDER -P callCompiler.cmake -- COMPILER ARGUMENT ...
#
# Calls a compiler with every path below TOP made relative to the folder in which it runs. A compiler
# that writes debug information for Windows writes its arguments into it, and so the paths of the
# machine that builds.
file(RELATIVE_PATH up "${CMAKE_CURRENT_BINARY_DIR}" "${TOP}")
string(REGEX REPLACE "/$" "" up "${up}")
if(up STREQUAL "")
  set(up ".")
endif()
set(call "")
math(EXPR last "${CMAKE_ARGC} - 1")
foreach(place RANGE 5 ${last})
  set(word "${CMAKE_ARGV${place}}")
  string(REPLACE "${TOP}/" "${up}/" word "${word}")
  string(REPLACE "=${TOP}=" "=${up}=" word "${word}")
  list(APPEND call "${word}")
endforeach()
execute_process(COMMAND ${call} RESULT_VARIABLE code)
if(NOT code STREQUAL "0")
  message(FATAL_ERROR "the compiler ended with ${code}")
endif()
