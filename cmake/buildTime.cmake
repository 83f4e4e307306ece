# OXDIAG_BUILD_TIME, in UTC: a time of the sources, so that building twice makes the same files. It
# is SOURCE_DATE_EPOCH of the environment, else the time of the commit, else, in an unpacked
# archive, the time of the file that holds the version.
#
# On the host the commit that counts is the last one that touched the version: a new time at every
# commit would link all programs anew.
block(PROPAGATE OXDIAG_BUILD_TIME)
  set(version_file "${PROJECT_SOURCE_DIR}/cmake/version.cmake")
  set(what "")
  if(OXDIAG_TARGET STREQUAL "host")
    set(what -- "${version_file}")
  endif()
  set(format "%Y-%m-%d %H:%M:%S")
  execute_process(COMMAND git -C "${PROJECT_SOURCE_DIR}" log -1 --format=%ct ${what}
                  OUTPUT_VARIABLE seconds OUTPUT_STRIP_TRAILING_WHITESPACE ERROR_QUIET)
  if(DEFINED ENV{SOURCE_DATE_EPOCH})
    string(TIMESTAMP OXDIAG_BUILD_TIME "${format}" UTC)
  elseif(seconds)
    set(ENV{SOURCE_DATE_EPOCH} ${seconds})
    string(TIMESTAMP OXDIAG_BUILD_TIME "${format}" UTC)
    unset(ENV{SOURCE_DATE_EPOCH})
  else()
    file(TIMESTAMP "${version_file}" OXDIAG_BUILD_TIME "${format}" UTC)
  endif()

  # The journal of HEAD grows with every commit and checkout: configure again, for the new time.
  execute_process(COMMAND git -C "${PROJECT_SOURCE_DIR}" rev-parse --path-format=absolute
                          --git-path logs/HEAD
                  OUTPUT_VARIABLE journal OUTPUT_STRIP_TRAILING_WHITESPACE ERROR_QUIET)
  if(journal AND EXISTS "${journal}" AND NOT OXDIAG_TARGET STREQUAL "host")
    set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS "${journal}")
  endif()
endblock()
