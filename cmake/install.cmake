# Where things go, and the functions by which a program and its manual page are installed.

include(GNUInstallDirs)
# A program looks for default.ini beside itself. So all of them lie in one directory with it, and
# what is in the path are links.
set(GAINSMITH_PROGRAM_DIRECTORY ${CMAKE_INSTALL_LIBDIR}/gainsmith)
set(CMAKE_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
  OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)

# The date of the version, from the head of CHANGELOG.md, which must be that of this version. It is
# the date of the manual pages, whenever they are made.
file(STRINGS ${PROJECT_SOURCE_DIR}/CHANGELOG.md heads REGEX "^## ")
list(GET heads 0 head)
if(NOT head MATCHES "^## ([0-9.]+), (20[0-9][0-9]-[0-9][0-9]-[0-9][0-9])$" OR
   NOT CMAKE_MATCH_1 STREQUAL PROJECT_VERSION)
  message(FATAL_ERROR "CHANGELOG.md must begin with \"## ${PROJECT_VERSION}, DATE\"; it has: ${head}")
endif()
set(GAINSMITH_RELEASE_DATE ${CMAKE_MATCH_2})
set(GAINSMITH_RELEASE_EPOCH 0)
if(UNIX)
  execute_process(COMMAND date -u -d ${GAINSMITH_RELEASE_DATE} +%s
    OUTPUT_VARIABLE GAINSMITH_RELEASE_EPOCH OUTPUT_STRIP_TRAILING_WHITESPACE)
endif()

# "gainsmith_version.h", for programs that tell their version.
configure_file(${CMAKE_CURRENT_LIST_DIR}/version.h.in
  ${PROJECT_BINARY_DIR}/include/version/gainsmith_version.h @ONLY)
add_library(gainsmith_version INTERFACE)
target_include_directories(gainsmith_version INTERFACE ${PROJECT_BINARY_DIR}/include/version)

# All that `cmake --install` needs to have been built.
add_custom_target(programs)

# gainsmith_install_program(TARGET): the program, and a link to it in the path.
function(gainsmith_install_program target)
  add_dependencies(programs ${target})
  install(TARGETS ${target} RUNTIME DESTINATION ${GAINSMITH_PROGRAM_DIRECTORY})
  file(RELATIVE_PATH link /${CMAKE_INSTALL_BINDIR} /${GAINSMITH_PROGRAM_DIRECTORY}/${target})
  install(CODE "
    set(bin \"\$ENV{DESTDIR}\${CMAKE_INSTALL_PREFIX}/${CMAKE_INSTALL_BINDIR}\")
    file(MAKE_DIRECTORY \"\${bin}\")
    file(CREATE_LINK \"${link}\" \"\${bin}/${target}\" SYMBOLIC)")
endfunction()

# gainsmith_help_page(TARGET SUMMARY [OPTIONS...]): a manual page from the program's help.
find_program(HELP2MAN help2man)
function(gainsmith_help_page target summary)
  if(NOT HELP2MAN)
    message(STATUS "No help2man: ${target} gets no manual page")
    return()
  endif()
  set(page ${CMAKE_CURRENT_BINARY_DIR}/${target}.1)
  add_custom_command(OUTPUT ${page} DEPENDS ${target}
    COMMAND ${CMAKE_COMMAND} -E env SOURCE_DATE_EPOCH=${GAINSMITH_RELEASE_EPOCH} LC_ALL=C TZ=UTC
      ${HELP2MAN} --no-info ${ARGN} --name=${summary} --output=${page} $<TARGET_FILE:${target}>
    VERBATIM)
  add_custom_target(${target}-page ALL DEPENDS ${page})
  add_dependencies(programs ${target}-page)
  install(FILES ${page} DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
endfunction()
