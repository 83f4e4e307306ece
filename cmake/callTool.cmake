# cmake -P callTool.cmake TOOL ARGUMENT ...
#
# Calls one of Microsoft's tools or one in their manner. They take what begins with a slash for an
# option if they can: of /clients/a.rc llvm-rc reads /c. So absolute paths among the arguments are
# made relative to the folder in which the tool runs.
set(call "")
math(EXPR last "${CMAKE_ARGC} - 1")
foreach(place RANGE 3 ${last})
  set(word "${CMAKE_ARGV${place}}")
  if(word MATCHES "^/[^:]*/")
    file(RELATIVE_PATH word "${CMAKE_CURRENT_BINARY_DIR}" "${word}")
  endif()
  list(APPEND call "${word}")
endforeach()
execute_process(COMMAND ${call} COMMAND_ERROR_IS_FATAL ANY)
