# Sorted primitives and plug-ins. The plug-ins are shared libraries made here, which call back into the test
# program.
include(${CMAKE_SOURCE_DIR}/tests/support/support.cmake)
target_link_libraries(${target} PRIVATE test_support ${CMAKE_DL_LIBS})
set_target_properties(${target} PROPERTIES ENABLE_EXPORTS ON)
set(plugin_folder ${CMAKE_BINARY_DIR}/lib/test-plugins)
target_compile_definitions(${target} PRIVATE PLUGIN_FOLDER="${plugin_folder}")
foreach(plugin several plain suffixed incomplete painter)
    add_library(test_plugin_${plugin} MODULE ${folder}/plugins/${plugin}.cpp)
    target_link_libraries(test_plugin_${plugin} PRIVATE tessaly_options)
    set_target_properties(test_plugin_${plugin} PROPERTIES
        PREFIX "" SUFFIX "" OUTPUT_NAME ${plugin} LIBRARY_OUTPUT_DIRECTORY ${plugin_folder})
    add_dependencies(${target} test_plugin_${plugin})
endforeach()
target_link_libraries(test_plugin_painter PRIVATE OpenGL::OpenGL)
set_target_properties(test_plugin_suffixed PROPERTIES SUFFIX ".dll")
# By these names they are found once they are loaded, wherever they lie.
target_link_options(test_plugin_plain PRIVATE LINKER:-soname,plain)
target_link_options(test_plugin_suffixed PRIVATE LINKER:-soname,suffixed.dll)
target_sources(${target} PRIVATE ${CMAKE_SOURCE_DIR}/tests/support/Containers.cpp)
