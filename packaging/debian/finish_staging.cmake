# Runs between installation into the staging folders and packing: what Debian asks of files that other systems leave as
# they are.
set(share ${CPACK_TEMPORARY_DIRECTORY}/*${CPACK_PACKAGING_INSTALL_PREFIX}/share)

# gzip stores neither name nor time: the same bytes whenever it is packed.
file(GLOB changelogs ${share}/doc/*/changelog.Debian)
list(LENGTH changelogs count)
list(LENGTH CPACK_COMPONENTS_ALL expected)
if(NOT count EQUAL expected)
    message(FATAL_ERROR "${count} changelogs were staged for ${expected} packages: ${changelogs}")
endif()
file(GLOB manual_pages ${share}/man/man[1-9]/*.[1-9])
foreach(text IN LISTS changelogs manual_pages)
    execute_process(COMMAND gzip -9 -n -f ${text} COMMAND_ERROR_IS_FATAL ANY)
endforeach()

# Debian's zsh has a folder of its own for the completions of packages.
file(GLOB completions ${share}/zsh/site-functions)
foreach(folder IN LISTS completions)
    cmake_path(GET folder PARENT_PATH zsh)
    file(RENAME ${folder} ${zsh}/vendor-completions)
endforeach()
