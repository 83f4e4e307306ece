# How the pieces of the product are built on each target.
#
#   oxdiag_library(NAME SOURCES ... DEPENDS ... [DEFINES ...])
#       One library of the product (vexk, qelmk, oxdiagk, a component). On the host a static
#       library; on the kernel targets a set of objects that a module links.
#
#   oxdiag_kernel_module(NAME TYPE dll|sys ENTRY symbol LIBRARIES ... IMPORTS ... [EXPORTS ...]
#                        [DESCRIPTION text])
#       windows only: links the objects of LIBRARIES into NAME.dll or NAME.sys with its PDB and,
#       for a dll, its import library. IMPORTS name other modules or kernel images. A module of the
#       family has a DESCRIPTION, and then the version of the build in its header and, with that
#       text, in its file properties.
#
#   oxdiag_kernel_import(NAME DEFINITION file.def)
#       windows only: the import library of a kernel image that is not built here.
#
# The tools are called by OXDIAG_TOOL, which spares them absolute paths; the step `windows` of the
# tests looks whether each of them is.

set(OXDIAG_MODULE_DIR "${CMAKE_BINARY_DIR}/modules")
file(MAKE_DIRECTORY "${OXDIAG_MODULE_DIR}")

set(OXDIAG_TOOL "${CMAKE_COMMAND}" -P "${CMAKE_CURRENT_LIST_DIR}/callTool.cmake")

function(oxdiag_library name)
  cmake_parse_arguments(ARG "" "" "SOURCES;DEPENDS;DEFINES" ${ARGN})
  if(OXDIAG_TARGET STREQUAL "host")
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

function(oxdiag_kernel_module name)
  cmake_parse_arguments(ARG "" "TYPE;ENTRY;DESCRIPTION" "LIBRARIES;IMPORTS;EXPORTS" ${ARGN})
  set(image "${OXDIAG_MODULE_DIR}/${name}.${ARG_TYPE}")
  set(flags /nologo /driver /subsystem:native /entry:${ARG_ENTRY} /nodefaultlib /debug /opt:ref
            /Brepro /WX "/pdbaltpath:%_PDB%" "/out:${name}.${ARG_TYPE}" "/pdb:${name}.pdb")
  if(ARG_TYPE STREQUAL "dll")
    list(APPEND flags /dll "/implib:${name}.lib")
  endif()
  foreach(symbol IN LISTS ARG_EXPORTS)
    list(APPEND flags "/export:${symbol}")
  endforeach()
  set(objects "")
  foreach(library IN LISTS ARG_LIBRARIES)
    list(APPEND objects "$<TARGET_OBJECTS:${library}>")
  endforeach()
  if(ARG_DESCRIPTION)
    set(resource "${CMAKE_CURRENT_BINARY_DIR}/${name}.rc")
    configure_file("${PROJECT_SOURCE_DIR}/cmake/module.rc.in" "${resource}" @ONLY)
    add_custom_command(
      OUTPUT "${resource}.res"
      COMMAND ${OXDIAG_TOOL} llvm-rc /no-preprocess /fo "${resource}.res" "${resource}"
      WORKING_DIRECTORY "${OXDIAG_MODULE_DIR}"
      DEPENDS "${resource}" VERBATIM)
    list(APPEND objects "${resource}.res")
    list(APPEND flags "/version:${OXDIAG_VERSION_IMAGE}")
  endif()
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
    WORKING_DIRECTORY "${OXDIAG_MODULE_DIR}"
    DEPENDS ${ARG_LIBRARIES} ${objects} ${imports} ${importTargets}
    COMMAND_EXPAND_LISTS VERBATIM)
  add_custom_target(${name}.module ALL DEPENDS ${outputs})
  add_custom_target(${name}.import DEPENDS ${outputs})
endfunction()
