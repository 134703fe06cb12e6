# Tests of what is installed, packed and told: the Debian packages, the man page, the gallery.

if(NOT TESSALY_SANITIZE)
    find_program(TESSALY_DPKG_DEB dpkg-deb)
    find_program(TESSALY_DPKG_SHLIBDEPS dpkg-shlibdeps)
    if(TESSALY_DPKG_DEB AND TESSALY_DPKG_SHLIBDEPS)
        set(parts)
        if(TARGET tessaly-view)
            list(APPEND parts --viewer)
        endif()
        set(test "packages: what is unpacked from them draws, builds hosts and is imported")
        add_test(NAME "${test}" COMMAND Python3::Interpreter ${CMAKE_CURRENT_LIST_DIR}/package_test.py
            --build ${CMAKE_BINARY_DIR} --work ${CMAKE_CURRENT_BINARY_DIR}/packages --compiler ${CMAKE_CXX_COMPILER}
            --libdir ${CMAKE_INSTALL_LIBDIR} ${parts}
            "--python=$<$<TARGET_EXISTS:tessaly_python>:$<TARGET_FILE:Python3::Interpreter>>")
        set_tests_properties("${test}" PROPERTIES TIMEOUT 600 ENVIRONMENT "LIBGL_ALWAYS_SOFTWARE=1")
    endif()
endif()

find_program(TESSALY_MAN man)
if(TARGET man_page AND TESSALY_MAN)
    add_test(NAME "man page: every option, and no warning"
        COMMAND Python3::Interpreter ${CMAKE_CURRENT_LIST_DIR}/man_page_test.py
                --page ${TESSALY_MAN_PAGE} --program $<TARGET_FILE:tessaly-view>)
endif()

if(TESSALY_APPS)
    add_test(NAME "gallery: every class, real code, and the pictures that it makes"
        COMMAND Python3::Interpreter ${CMAKE_SOURCE_DIR}/tests/docs/gallery_test.py
                --root ${CMAKE_SOURCE_DIR} --programs $<TARGET_FILE_DIR:example-volume> volume layers multi-core)
    set_tests_properties("gallery: every class, real code, and the pictures that it makes" PROPERTIES
        TIMEOUT 300 ENVIRONMENT "LIBGL_ALWAYS_SOFTWARE=1")
endif()

if(TARGET docs AND NOT TESSALY_SANITIZE)
    add_test(NAME "docs: the API reference is made without a warning"
        COMMAND ${CMAKE_COMMAND} --build ${CMAKE_BINARY_DIR} --target docs)
    set_tests_properties("docs: the API reference is made without a warning" PROPERTIES TIMEOUT 300)
endif()
