# The target oxdiagk::driver: what a driver compiles and links that uses the library. OXDIAG_KIT is a
# file with the compiler's options for the driver kit's headers, as lib/mingw-kit.rsp has them.

get_filename_component(oxdiagk_top "${CMAKE_CURRENT_LIST_DIR}/.." ABSOLUTE)
get_filename_component(oxdiagk_kit "${OXDIAG_KIT}" ABSOLUTE BASE_DIR "${CMAKE_SOURCE_DIR}")
if(NOT OXDIAG_KIT OR NOT EXISTS "${oxdiagk_kit}")
  message(FATAL_ERROR "OXDIAG_KIT is '${OXDIAG_KIT}', not a file with the options for the driver "
                      "kit's headers; README.txt says what stands in it.")
endif()

if(NOT TARGET oxdiagk::driver)
  add_library(oxdiagk::driver INTERFACE IMPORTED)
  target_include_directories(oxdiagk::driver INTERFACE "${oxdiagk_top}/include")
  target_compile_options(oxdiagk::driver INTERFACE
    "@${oxdiagk_top}/lib/compile.rsp" "@${oxdiagk_kit}")
  target_link_options(oxdiagk::driver INTERFACE
    "-L${oxdiagk_top}/lib" "@${oxdiagk_top}/lib/link.rsp")
endif()
