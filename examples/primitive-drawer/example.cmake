# The plug-in: a shared library of the plain name "ribbons" beside the program that loads it.
add_library(example-ribbons MODULE ${folder}/ribbons.cpp)
target_link_libraries(example-ribbons PRIVATE tessaly_options OpenGL::OpenGL)
set_target_properties(example-ribbons PROPERTIES
    PREFIX "" SUFFIX "" OUTPUT_NAME ribbons LIBRARY_OUTPUT_DIRECTORY ${CMAKE_RUNTIME_OUTPUT_DIRECTORY})
add_dependencies(example-${name} example-ribbons)
