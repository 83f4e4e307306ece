# cmake --install: the library for clients on the host, found by find_package(oxdiagk CONFIG) and by
# pkg-config, and the tools with their manual pages and completions: the components `development`
# and `tools`. The headers lie in a folder of their own, because some have names that others use too.

include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

set(header_folder "${CMAKE_INSTALL_INCLUDEDIR}/oxdiagk")
set(config_folder "${CMAKE_INSTALL_LIBDIR}/cmake/oxdiagk")

set_target_properties(ntos_strict ntos_plain PROPERTIES EXCLUDE_FROM_ALL FALSE)
install(TARGETS oxdiagk qelmk vexk ntos_strict ntos_plain
  ARCHIVE DESTINATION "${CMAKE_INSTALL_LIBDIR}" COMPONENT development)

foreach(folder IN ITEMS
    include
    platform/compiler/include platform/compiler/host/include
    platform/ntos/include platform/ntos/host/include
    platform/stl/include platform/stl/host/include
    platform/vexk/include platform/vexk/host/include
    platform/qelmk/include)
  install(DIRECTORY "${PROJECT_SOURCE_DIR}/${folder}/" DESTINATION "${header_folder}"
    COMPONENT development FILES_MATCHING PATTERN "*.h")
endforeach()

# How debuggers show the objects of the library; docs/debugging.md tells how to load them.
install(FILES
  "${PROJECT_SOURCE_DIR}/tools/debugger/oxdiagk.natvis"
  "${PROJECT_SOURCE_DIR}/tools/debugger/oxdiagk-gdb.py"
  DESTINATION "${CMAKE_INSTALL_DATADIR}/oxdiagk/debugger" COMPONENT development)

configure_package_config_file(
  "${PROJECT_SOURCE_DIR}/cmake/oxdiagkConfig.cmake.in"
  "${CMAKE_CURRENT_BINARY_DIR}/package/oxdiagkConfig.cmake"
  INSTALL_DESTINATION "${config_folder}"
  PATH_VARS header_folder CMAKE_INSTALL_LIBDIR)
write_basic_package_version_file(
  "${CMAKE_CURRENT_BINARY_DIR}/package/oxdiagkConfigVersion.cmake" COMPATIBILITY SameMajorVersion)
install(FILES
  "${CMAKE_CURRENT_BINARY_DIR}/package/oxdiagkConfig.cmake"
  "${CMAKE_CURRENT_BINARY_DIR}/package/oxdiagkConfigVersion.cmake"
  DESTINATION "${config_folder}" COMPONENT development)

# The folder of a .pc file is where it is found, so the package may be moved.
file(RELATIVE_PATH OXDIAG_PC_PREFIX "/${CMAKE_INSTALL_LIBDIR}/pkgconfig" "/")
list(JOIN OXDIAG_CLIENT_OPTIONS " " OXDIAG_PC_FLAGS)
foreach(name IN ITEMS oxdiagk oxdiagk-executive)
  configure_file("${PROJECT_SOURCE_DIR}/cmake/${name}.pc.in"
                 "${CMAKE_CURRENT_BINARY_DIR}/package/${name}.pc" @ONLY)
  install(FILES "${CMAKE_CURRENT_BINARY_DIR}/package/${name}.pc"
    DESTINATION "${CMAKE_INSTALL_LIBDIR}/pkgconfig" COMPONENT development)
endforeach()

# The targets `installed_development` and `installed_tools` are what has to be built for a component,
# `installed` for both.
get_property(programs GLOBAL PROPERTY OXDIAG_PROGRAMS)
foreach(program IN LISTS programs)
  get_target_property(folder ${program} SOURCE_DIR)
  install(TARGETS ${program} RUNTIME DESTINATION "${CMAKE_INSTALL_BINDIR}" COMPONENT tools)
  install(FILES "${folder}/${program}.1"
    DESTINATION "${CMAKE_INSTALL_MANDIR}/man1" COMPONENT tools)
  install(FILES "${folder}/${program}.bash" RENAME ${program}
    DESTINATION "${CMAKE_INSTALL_DATADIR}/bash-completion/completions" COMPONENT tools)
endforeach()
add_custom_target(installed_development DEPENDS oxdiagk qelmk vexk ntos_strict ntos_plain)
add_custom_target(installed_tools DEPENDS ${programs})
add_custom_target(installed DEPENDS installed_development installed_tools)
