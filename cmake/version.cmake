# The version of everything that is built here, said in this one line: major.minor.update, the
# letter of the phase (d development, a alpha, b beta, f released) and the build.
set(OXDIAG_VERSION 2.0.0d1)

# From it:
#   OXDIAG_VERSION_RELEASE  2.0.0
#   OXDIAG_VERSION_IMAGE    2.0, for the headers of the Windows modules
#   OXDIAG_VERSION_PACKED   the 32 bits of tSSVersion
#   OXDIAG_VERSION_FILE     2,0,0,1, for the file properties of the Windows modules; the last number
#                           holds phase and build, and grows from one version to the next
#   OXDIAG_VERSION_FLAGS    there too: 2, "prerelease", unless the phase is f
block(PROPAGATE OXDIAG_VERSION_RELEASE OXDIAG_VERSION_IMAGE OXDIAG_VERSION_PACKED
                OXDIAG_VERSION_FILE OXDIAG_VERSION_FLAGS)
  set(number "(0|[1-9][0-9]*)")
  string(REGEX MATCH "^${number}\\.${number}\\.${number}([dabf])${number}$"
         matched "${OXDIAG_VERSION}")
  if(NOT matched)
    message(FATAL_ERROR "${OXDIAG_VERSION} is not a version such as 1.0.0f7")
  endif()
  set(major ${CMAKE_MATCH_1})
  set(minor ${CMAKE_MATCH_2})
  set(update ${CMAKE_MATCH_3})
  set(letter ${CMAKE_MATCH_4})
  set(build ${CMAKE_MATCH_5})
  if(major GREATER 255 OR minor GREATER 15 OR update GREATER 15 OR build GREATER 4095)
    message(FATAL_ERROR "a number in ${OXDIAG_VERSION} is above the largest, 255.15.15f4095")
  endif()

  string(FIND "dfba" ${letter} phase)
  string(FIND "dabf" ${letter} rank)
  set(OXDIAG_VERSION_RELEASE ${major}.${minor}.${update})
  set(OXDIAG_VERSION_IMAGE ${major}.${minor})
  math(EXPR OXDIAG_VERSION_PACKED
    "(${major} << 24) | (${minor} << 20) | (${update} << 16) | (${phase} << 12) | ${build}"
    OUTPUT_FORMAT HEXADECIMAL)
  math(EXPR last "(${rank} << 12) | ${build}")
  set(OXDIAG_VERSION_FILE ${major},${minor},${update},${last})
  set(OXDIAG_VERSION_FLAGS 2)
  if(letter STREQUAL "f")
    set(OXDIAG_VERSION_FLAGS 0)
  endif()
endblock()
