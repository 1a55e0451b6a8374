# Run by CPack on the files of the package before it is made: puts things where Debian wants them.

file(GLOB_RECURSE manual_pages "${CPACK_TEMPORARY_DIRECTORY}/usr/share/man/*.1")
set(doc "${CPACK_TEMPORARY_DIRECTORY}/usr/share/doc/bomparser")
file(COPY_FILE "${CPACK_BOMPARSER_CHANGELOG}" "${doc}/changelog")
file(COPY_FILE "${CPACK_BOMPARSER_COPYRIGHT}" "${doc}/copyright")
file(REMOVE "${doc}/LICENSE")  # The same as the copyright file.
file(CHMOD "${doc}/changelog" "${doc}/copyright" PERMISSIONS OWNER_READ OWNER_WRITE GROUP_READ WORLD_READ)
execute_process(COMMAND gzip -9 -n -f ${manual_pages} "${doc}/changelog" COMMAND_ERROR_IS_FATAL ANY)

set(zsh "${CPACK_TEMPORARY_DIRECTORY}/usr/share/zsh")
file(RENAME "${zsh}/site-functions" "${zsh}/vendor-completions")
