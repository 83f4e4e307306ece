# The target oxdiagk::driver: what a driver compiles and links that uses the library. OXDIAG_KIT are
# the folders of the driver kit's headers, those with ntddk.h and with what that one includes.

get_filename_component(oxdiagk_top "${CMAKE_CURRENT_LIST_DIR}/.." ABSOLUTE)

if(NOT TARGET oxdiagk::driver)
  add_library(oxdiagk::driver INTERFACE IMPORTED)
  target_include_directories(oxdiagk::driver INTERFACE "${oxdiagk_top}/include")
  target_include_directories(oxdiagk::driver SYSTEM INTERFACE ${OXDIAG_KIT})
  target_compile_options(oxdiagk::driver INTERFACE "@${oxdiagk_top}/lib/compile.rsp")
  # The headers of mingw-w64 in place of the kit's take clang for another compiler otherwise.
  foreach(folder IN LISTS OXDIAG_KIT)
    if(EXISTS "${folder}/_mingw.h")
      target_compile_options(oxdiagk::driver INTERFACE "@${oxdiagk_top}/lib/mingw-kit.rsp")
    endif()
  endforeach()
  target_link_options(oxdiagk::driver INTERFACE
    "-L${oxdiagk_top}/lib" "@${oxdiagk_top}/lib/link.rsp")
endif()
