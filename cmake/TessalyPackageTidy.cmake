# Run by cpack on the staged files of every package, ahead of packing: what a Debian package has otherwise than an
# installation of one's own.

# CPACK_TEMPORARY_INSTALL_DIRECTORY is the folder with one folder per component.
set(ENV{SOURCE_DATE_EPOCH} ${CPACK_TESSALY_RELEASE_DATE})
string(TIMESTAMP TESSALY_CHANGELOG_DATE "%a, %d %b %Y %H:%M:%S +0000" UTC)
set(TESSALY_PACKAGE_VERSION ${CPACK_PACKAGE_VERSION}-${CPACK_DEBIAN_PACKAGE_RELEASE})

foreach(component IN LISTS CPACK_COMPONENTS_ALL)
    set(stage ${CPACK_TEMPORARY_INSTALL_DIRECTORY}/${component})
    if(NOT IS_DIRECTORY ${stage})
        message(FATAL_ERROR "Nothing was staged for ${component} in ${stage}")
    endif()

    # Libraries lie where the loader looks by itself.
    file(GLOB_RECURSE files LIST_DIRECTORIES FALSE ${stage}/*)
    foreach(file IN LISTS files)
        if(IS_SYMLINK ${file})
            continue()
        endif()
        file(READ ${file} magic LIMIT 4 HEX)
        if(magic STREQUAL "7f454c46")
            file(RPATH_REMOVE FILE ${file})
        endif()
    endforeach()

    file(GLOB pages ${stage}/usr/share/man/man*/*.[0-9])
    foreach(page IN LISTS pages)
        execute_process(COMMAND gzip -9nf ${page} COMMAND_ERROR_IS_FATAL ANY)
    endforeach()

    string(TOUPPER ${component} COMPONENT)
    set(TESSALY_PACKAGE ${CPACK_DEBIAN_${COMPONENT}_PACKAGE_NAME})
    set(docs ${stage}/usr/share/doc/${TESSALY_PACKAGE})
    configure_file(${CPACK_TESSALY_SOURCE}/packaging/changelog.in ${docs}/changelog.Debian @ONLY)
    execute_process(COMMAND gzip -9nf ${docs}/changelog.Debian COMMAND_ERROR_IS_FATAL ANY)
    configure_file(${CPACK_TESSALY_SOURCE}/packaging/copyright ${docs}/copyright COPYONLY)

    # Folders and files as they should be, whatever the umask was.
    execute_process(COMMAND find ${stage} -type d -exec chmod 755 {} + COMMAND_ERROR_IS_FATAL ANY)
    execute_process(COMMAND find ${stage} -type f ! -path "*/bin/*" -exec chmod 644 {} + COMMAND_ERROR_IS_FATAL ANY)
endforeach()
