# The man page of tessaly-view, <build>/man/tessaly-view.1: its options as the program itself tells them, and
# packaging/tessaly-view.h2m, which says what they do not. Needs help2man; without it there is no page.

find_program(TESSALY_HELP2MAN help2man)
if(NOT TESSALY_HELP2MAN)
    message(STATUS "No help2man: tessaly-view has no man page")
    return()
endif()

# The page bears the date of the release, so that two builds of it are the same.
set(TESSALY_MAN_PAGE ${CMAKE_BINARY_DIR}/man/tessaly-view.1)
file(MAKE_DIRECTORY ${CMAKE_BINARY_DIR}/man)
set(include ${CMAKE_SOURCE_DIR}/packaging/tessaly-view.h2m)
set(maker ${CMAKE_SOURCE_DIR}/tools/man_page.py)
add_custom_command(OUTPUT ${TESSALY_MAN_PAGE}
    COMMAND ${CMAKE_COMMAND} -E env SOURCE_DATE_EPOCH=${TESSALY_RELEASE_DATE}
            $<TARGET_FILE:Python3::Interpreter> ${maker} --help2man ${TESSALY_HELP2MAN} --include ${include}
            --program $<TARGET_FILE:tessaly-view> --output ${TESSALY_MAN_PAGE}
    DEPENDS tessaly-view ${include} ${maker}
    COMMENT "Man page tessaly-view.1" VERBATIM)
add_custom_target(man_page ALL DEPENDS ${TESSALY_MAN_PAGE})
install(FILES ${TESSALY_MAN_PAGE} DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT viewer)
