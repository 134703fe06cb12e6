# tessaly_headers(include-folder pattern...): links the public headers that match below the current folder into
# <build>/include/<include-folder>, so that the tree is included just as the installed package is.

function(tessaly_headers folder)
    set(found)
    foreach(pattern IN LISTS ARGN)
        file(GLOB_RECURSE some CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/${pattern})
        list(APPEND found ${some})
    endforeach()
    set(into ${CMAKE_BINARY_DIR}/include/${folder})
    file(MAKE_DIRECTORY ${into})
    foreach(header IN LISTS found)
        get_filename_component(name ${header} NAME)
        file(CREATE_LINK ${header} ${into}/${name} SYMBOLIC)
    endforeach()
    set(TESSALY_PUBLIC_HEADERS ${found} PARENT_SCOPE)
endfunction()
