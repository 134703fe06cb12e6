# The target `docs`, where Doxygen is found: the reference of the public headers and the pages, in <build>/docs/html.
# It is no part of `all`; what it has made is installed by the component doc. Any warning fails it.

find_program(DOXYGEN_EXECUTABLE doxygen)
mark_as_advanced(DOXYGEN_EXECUTABLE)
if(DOXYGEN_EXECUTABLE)
    set(TESSALY_DOCS ${CMAKE_BINARY_DIR}/docs)
    configure_file(${CMAKE_SOURCE_DIR}/docs/Doxyfile.in ${TESSALY_DOCS}/Doxyfile @ONLY)

    # The generated headers are needed; ahead of those of Tessaly come the libraries that it links.
    set(generated)
    foreach(pair platform:OpenSG tessaly:Tessaly)
        string(REPLACE ":" ";" pair ${pair})
        list(GET pair 0 folder)
        list(GET pair 1 headers)
        file(GLOB_RECURSE tables CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/${folder}/*.fcd)
        foreach(table IN LISTS tables)
            get_filename_component(stem ${table} NAME_WE)
            list(APPEND generated ${CMAKE_BINARY_DIR}/include/${headers}/${stem}Base.h
                                  ${CMAKE_BINARY_DIR}/include/${headers}/${stem}Fields.h)
        endforeach()
    endforeach()

    add_custom_target(docs
        COMMAND ${CMAKE_COMMAND} -E rm -rf ${TESSALY_DOCS}/html
        COMMAND Python3::Interpreter ${CMAKE_SOURCE_DIR}/tools/doxygen_input.py
                ${CMAKE_BINARY_DIR}/include ${TESSALY_DOCS}/include
        COMMAND ${DOXYGEN_EXECUTABLE} ${TESSALY_DOCS}/Doxyfile
        DEPENDS ${generated}
        COMMENT "Reference in ${TESSALY_DOCS}/html" VERBATIM)
    install(DIRECTORY ${TESSALY_DOCS}/html DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT doc OPTIONAL)
endif()
