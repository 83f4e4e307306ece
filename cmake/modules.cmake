# How the pieces of the product are built on each target.
#
#   oxdiag_library(NAME SOURCES ... DEPENDS ... [DEFINES ...])
#       One library of the product (vexk, qelmk, oxdiagk, a component). On the host a static
#       library, as for programs on Windows; on the kernel targets a set of objects that a module
#       links.
#
#   oxdiag_kernel_module(NAME TYPE dll|sys DESCRIPTION text LIBRARIES ... IMPORTS ... [ENTRY symbol])
#       windows only: links the objects of LIBRARIES into NAME.dll or NAME.sys with its PDB and,
#       for a dll, its import library. IMPORTS name other modules or kernel images. A sys has a
#       DriverEntry; a dll has DllInitialize and DllUnload, which it exports, and in ENTRY what is
#       called when it is started as a driver.
#       Every image gets a stack cookie, control-flow guard, the checksum of its header, the version
#       of the build there and, with DESCRIPTION, in its file properties.
#
#   oxdiag_driver_package(NAME INF template [FILES ...])
#       windows only: puts NAME.inf and these files beside the images. In the template, DriverVer is
#       @OXDIAG_DRIVER_VERSION@, the date of the sources and the version of the build. The step
#       `windows` of the tests looks whether a package is complete.
#
#   oxdiag_kernel_import(NAME DEFINITION file.def)
#       windows only: the import library of a kernel image that is not built here.
#
# The tools are called by OXDIAG_TOOL, which spares them absolute paths; the step `windows` of the
# tests looks whether each of them is.

set(OXDIAG_MODULE_DIR "${CMAKE_BINARY_DIR}/modules")
file(MAKE_DIRECTORY "${OXDIAG_MODULE_DIR}")

set(OXDIAG_CHECKSUM "${CMAKE_CURRENT_LIST_DIR}/imageChecksum.py")
set(OXDIAG_TOOL "${CMAKE_COMMAND}" -P "${CMAKE_CURRENT_LIST_DIR}/callTool.cmake")

function(oxdiag_library name)
  cmake_parse_arguments(ARG "" "" "SOURCES;DEPENDS;DEFINES" ${ARGN})
  if(OXDIAG_TARGET MATCHES "^(host|windows-tools)$")
    add_library(${name} STATIC ${ARG_SOURCES})
  else()
    add_library(${name} OBJECT ${ARG_SOURCES})
  endif()
  target_link_libraries(${name} PUBLIC ${ARG_DEPENDS} PRIVATE oxdiag_product)
  target_compile_definitions(${name} PRIVATE ${ARG_DEFINES})
endfunction()

function(oxdiag_kernel_import name)
  cmake_parse_arguments(ARG "" "DEFINITION" "" ${ARGN})
  set(library "${OXDIAG_MODULE_DIR}/${name}.lib")
  add_custom_command(
    OUTPUT "${library}"
    COMMAND ${OXDIAG_TOOL} llvm-dlltool -m i386:x86-64 -d "${ARG_DEFINITION}" -l "${name}.lib"
    WORKING_DIRECTORY "${OXDIAG_MODULE_DIR}"
    DEPENDS "${ARG_DEFINITION}" VERBATIM)
  add_custom_target(${name}.import DEPENDS "${library}")
endfunction()

# The names of an image's version resource; TYPE is dll, sys or exe.
function(oxdiag_version_resource name)
  cmake_parse_arguments(ARG "" "TYPE;DESCRIPTION;OUTPUT" "" ${ARGN})
  if(NOT ARG_DESCRIPTION)
    message(FATAL_ERROR "${name}.${ARG_TYPE} has no DESCRIPTION for its file properties")
  endif()
  set(ARG_KIND "3") # VFT_DRV
  set(ARG_SUBKIND "7") # VFT2_DRV_SYSTEM
  if(ARG_TYPE STREQUAL "exe")
    set(ARG_KIND "1") # VFT_APP
    set(ARG_SUBKIND "0")
  endif()
  configure_file("${PROJECT_SOURCE_DIR}/cmake/version.rc.in" "${ARG_OUTPUT}" @ONLY)
endfunction()

function(oxdiag_kernel_module name)
  cmake_parse_arguments(ARG "" "TYPE;ENTRY;DESCRIPTION" "LIBRARIES;IMPORTS" ${ARGN})
  set(image "${OXDIAG_MODULE_DIR}/${name}.${ARG_TYPE}")
  set(flags /nologo /driver /subsystem:native /nodefaultlib /debug /opt:ref /guard:cf /Brepro /WX
            "/pdbaltpath:%_PDB%" "/pdbsourcepath:x:\\oxdiagk" "/version:${OXDIAG_VERSION_IMAGE}"
            "/out:${name}.${ARG_TYPE}" "/pdb:${name}.pdb")
  if(ARG_TYPE STREQUAL "dll")
    list(APPEND flags /dll "/implib:${name}.lib" "/entry:${ARG_ENTRY}"
                      "/export:DllInitialize=enterLibrary,PRIVATE" "/export:DllUnload,PRIVATE")
    list(APPEND ARG_LIBRARIES imageGuards libraryEntry)
  else()
    list(APPEND flags /entry:enterDriver)
    list(APPEND ARG_LIBRARIES imageGuards driverEntry)
  endif()
  set(resource "${CMAKE_CURRENT_BINARY_DIR}/${name}.rc")
  oxdiag_version_resource(${name} TYPE ${ARG_TYPE} DESCRIPTION "${ARG_DESCRIPTION}"
                          OUTPUT "${resource}")
  add_custom_command(
    OUTPUT "${resource}.res"
    COMMAND ${OXDIAG_TOOL} llvm-rc /no-preprocess /fo "${resource}.res" "${resource}"
    WORKING_DIRECTORY "${OXDIAG_MODULE_DIR}"
    DEPENDS "${resource}" VERBATIM)
  set(objects "${resource}.res")
  foreach(library IN LISTS ARG_LIBRARIES)
    list(APPEND objects "$<TARGET_OBJECTS:${library}>")
  endforeach()
  set(imports "")
  set(importTargets "")
  foreach(import IN LISTS ARG_IMPORTS)
    list(APPEND imports "${OXDIAG_MODULE_DIR}/${import}.lib")
    list(APPEND importTargets ${import}.import)
  endforeach()
  set(outputs "${image}")
  if(ARG_TYPE STREQUAL "dll")
    list(APPEND outputs "${OXDIAG_MODULE_DIR}/${name}.lib")
  endif()
  add_custom_command(
    OUTPUT ${outputs}
    COMMAND ${OXDIAG_TOOL} lld-link ${flags} ${objects} ${imports}
    COMMAND python3 "${OXDIAG_CHECKSUM}" "${name}.${ARG_TYPE}"
    WORKING_DIRECTORY "${OXDIAG_MODULE_DIR}"
    DEPENDS ${ARG_LIBRARIES} ${objects} ${imports} ${importTargets} "${OXDIAG_CHECKSUM}"
    COMMAND_EXPAND_LISTS VERBATIM)
  add_custom_target(${name}.module ALL DEPENDS ${outputs})
  add_custom_target(${name}.import DEPENDS ${outputs})
endfunction()

function(oxdiag_driver_package name)
  cmake_parse_arguments(ARG "" "INF" "FILES" ${ARGN})
  string(REGEX REPLACE "^([0-9]+)-([0-9]+)-([0-9]+) .*$" "\\2/\\3/\\1" date "${OXDIAG_BUILD_TIME}")
  string(REPLACE "," "." version "${OXDIAG_VERSION_FILE}")
  set(OXDIAG_DRIVER_VERSION "${date},${version}")
  configure_file("${ARG_INF}" "${OXDIAG_MODULE_DIR}/${name}.inf" @ONLY NEWLINE_STYLE CRLF)
  foreach(file IN LISTS ARG_FILES)
    get_filename_component(own "${file}" NAME)
    configure_file("${file}" "${OXDIAG_MODULE_DIR}/${own}" COPYONLY)
  endforeach()
endfunction()
