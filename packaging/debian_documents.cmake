# Runs in CPack between install and package: gives the documents the form that Debian wants.

file(GLOB staged "${CPACK_TEMPORARY_DIRECTORY}/usr")
if(NOT staged)
  message(FATAL_ERROR "Nothing is installed under ${CPACK_TEMPORARY_DIRECTORY}")
endif()
set(documents ${staged}/share/doc/gainsmith)
file(REMOVE ${documents}/LICENSE)
file(COPY_FILE ${CPACK_GAINSMITH_COPYRIGHT} ${documents}/copyright)
file(RENAME ${documents}/CHANGELOG.md ${documents}/changelog)

execute_process(COMMAND date -u -R -d ${CPACK_GAINSMITH_DATE}
  OUTPUT_VARIABLE date OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
file(WRITE ${documents}/changelog.Debian
"gainsmith (${CPACK_PACKAGE_VERSION}-${CPACK_DEBIAN_PACKAGE_RELEASE}) unstable; urgency=medium

  * Package of version ${CPACK_PACKAGE_VERSION}; changelog.gz tells what is new.

 -- ${CPACK_PACKAGE_CONTACT}  ${date}
")

# What Debian asks of a package that is new to its archive, where this one does not go.
file(WRITE ${staged}/share/lintian/overrides/gainsmith
  "gainsmith: initial-upload-closes-no-bugs\n")

# Without name and time in the compressed file, the same text gives the same bytes.
file(GLOB pages ${staged}/share/man/man1/*.1)
execute_process(COMMAND gzip -9nf ${pages} ${documents}/changelog ${documents}/changelog.Debian
  COMMAND_ERROR_IS_FATAL ANY)
file(CHMOD_RECURSE ${staged}/share FILE_PERMISSIONS OWNER_READ OWNER_WRITE GROUP_READ WORLD_READ
  DIRECTORY_PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE
  WORLD_READ WORLD_EXECUTE)
