# What a client on the host links, the same within the build as from the installed package:
#
#   oxdiagk::oxdiagk    the library, with the modules beneath it and the flags that it needs
#   oxdiagk::executive  the strict executive in place of the one that the library brings, for
#                       tests of a driver
#
# The flags: C++20 and UTF-16 wide text, as on Windows; frame pointers and whole frames for the call
# stacks of statuses; no type information, since the library's classes have none to derive from.

set(OXDIAG_CLIENT_OPTIONS
  -fshort-wchar -fno-rtti -fno-omit-frame-pointer -fno-optimize-sibling-calls)

add_library(oxdiagk_client INTERFACE)
target_link_libraries(oxdiagk_client INTERFACE oxdiagk)
target_compile_features(oxdiagk_client INTERFACE cxx_std_20)
target_compile_options(oxdiagk_client INTERFACE ${OXDIAG_CLIENT_OPTIONS})
add_library(oxdiagk::oxdiagk ALIAS oxdiagk_client)

add_library(oxdiagk_executive INTERFACE)
if(NOT OXDIAG_EXECUTIVE STREQUAL "strict")
  # Whole and in front of the other one, so that nothing is left to be found there.
  target_link_libraries(oxdiagk_executive INTERFACE "$<LINK_LIBRARY:WHOLE_ARCHIVE,ntos_strict>")
endif()
target_link_libraries(oxdiagk_executive INTERFACE oxdiagk_client)
add_library(oxdiagk::executive ALIAS oxdiagk_executive)
