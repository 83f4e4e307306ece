# The programs for people, on Linux and for Windows.
#
#   oxdiag_program(NAME DESCRIPTION text SOURCES ... LIBRARIES ...)
#       One program. For Windows it stands alone, without any DLL of its compiler's, and tells its
#       version in its header and file properties, with DESCRIPTION.
#       On Linux cmake --install puts it into place, with its manual page NAME.1 and its completion
#       NAME.bash, which lie beside its CMakeLists.txt.
#
#   oxdiag_program_parts(NAME SOURCES ... TYPED ...)
#       What a program is made of, for itself and for its tests. The product has no type information,
#       so neither has what derives from its classes or calls them; TYPED are the sources that read
#       the command line, whose library asks for it. For the tests the standard headers are read once,
#       which is half of the time that most of these sources take to compile there.
#
# The targets oxdiag_command_line and oxdiag_json are the libraries that read a command line and write
# JSON.

add_library(oxdiag_command_line INTERFACE)
add_library(oxdiag_json INTERFACE)
if(OXDIAG_TARGET STREQUAL "host")
  find_package(CLI11 REQUIRED)
  find_package(nlohmann_json REQUIRED)
  target_link_libraries(oxdiag_command_line INTERFACE CLI11::CLI11)
  target_link_libraries(oxdiag_json INTERFACE nlohmann_json::nlohmann_json)
else()
  # Their folder is the one of all headers of the machine that builds; only they are wanted.
  file(MAKE_DIRECTORY "${CMAKE_BINARY_DIR}/include")
  foreach(library CLI nlohmann)
    file(CREATE_LINK "/usr/include/${library}" "${CMAKE_BINARY_DIR}/include/${library}" SYMBOLIC)
  endforeach()
  foreach(library oxdiag_command_line oxdiag_json)
    target_include_directories(${library} SYSTEM INTERFACE "${CMAKE_BINARY_DIR}/include")
  endforeach()
endif()

function(oxdiag_program name)
  cmake_parse_arguments(ARG "" "DESCRIPTION" "SOURCES;LIBRARIES" ${ARGN})
  add_executable(${name} ${ARG_SOURCES})
  target_link_libraries(${name} PRIVATE ${ARG_LIBRARIES} oxdiag_warnings)
  set_property(GLOBAL APPEND PROPERTY OXDIAG_PROGRAMS ${name})
  if(NOT OXDIAG_TARGET STREQUAL "windows-tools")
    return()
  endif()
  target_link_options(${name} PRIVATE -static -s -Wl,--no-insert-timestamp)
  # CMake itself says 0.0 before the libraries.
  string(REPLACE "." ",--minor-image-version," image_version "${OXDIAG_VERSION_IMAGE}")
  target_link_libraries(${name} PRIVATE "-Wl,--major-image-version,${image_version}")
  set(resource "${CMAKE_CURRENT_BINARY_DIR}/${name}.rc")
  oxdiag_version_resource(${name} TYPE exe OUTPUT "${resource}" DESCRIPTION "${ARG_DESCRIPTION}")
  add_custom_command(
    OUTPUT "${resource}.o"
    COMMAND x86_64-w64-mingw32-windres "${resource}" "${resource}.o"
    DEPENDS "${resource}" VERBATIM)
  target_sources(${name} PRIVATE "${resource}.o")
endfunction()

function(oxdiag_program_parts name)
  cmake_parse_arguments(ARG "" "" "SOURCES;TYPED" ${ARGN})
  add_library(${name} STATIC ${ARG_SOURCES} ${ARG_TYPED})
  target_compile_options(${name} PRIVATE -fno-rtti)
  # What the library of command lines makes takes twice as long to compile with that sanitizer, or
  # optimised, and runs once.
  set(typed -frtti -O0)
  if(OXDIAG_SANITIZE MATCHES "undefined" AND NOT OXDIAG_TESTS_UNDEFINED)
    list(APPEND typed -fno-sanitize=undefined)
  endif()
  set_source_files_properties(${ARG_TYPED} PROPERTIES
    COMPILE_OPTIONS "${typed}"
    SKIP_PRECOMPILE_HEADERS ON)
  if(CMAKE_BUILD_TYPE STREQUAL "Debug")
    target_precompile_headers(${name} PRIVATE
      <algorithm> <cstdio> <map> <memory> <optional> <string> <string_view> <vector>)
  endif()
  target_link_libraries(${name} PRIVATE oxdiag_warnings)
endfunction()
