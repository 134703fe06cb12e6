# tessaly_table(target table headers): generates the mechanical half of one container class, headers into the folder
# `headers`, and adds it to the target.
# tessaly_tables(target include-folder): the same for all .fcd tables below the current folder; the headers go to
# <build>/include/<include-folder> and are installed to include/<include-folder>.

function(tessaly_table target table headers)
    set(generator ${CMAKE_SOURCE_DIR}/tools/fcd.py)
    set(sources ${CMAKE_CURRENT_BINARY_DIR}/generated)
    file(MAKE_DIRECTORY ${headers} ${sources})
    get_filename_component(stem ${table} NAME_WE)
    set(outputs ${headers}/${stem}Base.h ${headers}/${stem}Fields.h ${sources}/${stem}Base.cpp)
    add_custom_command(
        OUTPUT ${outputs}
        COMMAND Python3::Interpreter ${generator} ${table} --headers ${headers} --sources ${sources}
        DEPENDS ${table} ${generator}
        COMMENT "Table ${stem}.fcd" VERBATIM)
    target_sources(${target} PRIVATE ${outputs})
endfunction()

function(tessaly_tables target folder)
    file(GLOB_RECURSE tables CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/*.fcd)
    set(headers ${CMAKE_BINARY_DIR}/include/${folder})
    # The generated sources are many and alike: they are compiled in batches, the hand-written ones one by one.
    get_target_property(written ${target} SOURCES)
    set_source_files_properties(${written} PROPERTIES SKIP_UNITY_BUILD_INCLUSION ON)
    set_target_properties(${target} PROPERTIES UNITY_BUILD ON UNITY_BUILD_BATCH_SIZE 16)
    set(generated)
    foreach(table IN LISTS tables)
        tessaly_table(${target} ${table} ${headers})
        get_filename_component(stem ${table} NAME_WE)
        list(APPEND generated ${headers}/${stem}Base.h ${headers}/${stem}Fields.h)
    endforeach()
    install(FILES ${generated} DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/${folder})
endfunction()
