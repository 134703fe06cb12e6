# The warnings and sanitizers that every target of the project is built with.

add_library(tessaly_options INTERFACE)
target_compile_options(tessaly_options INTERFACE -Wall -Wextra -Werror)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    # gcc 12 drops the rounding when this pass vectorises a conversion from double to float and back.
    target_compile_options(tessaly_options INTERFACE -fno-tree-slp-vectorize)
endif()
if(TESSALY_SANITIZE)
    target_compile_options(tessaly_options INTERFACE -fsanitize=${TESSALY_SANITIZE} -fno-sanitize-recover=all
                                                     -fno-omit-frame-pointer)
    target_link_options(tessaly_options INTERFACE -fsanitize=${TESSALY_SANITIZE})
endif()

find_program(TESSALY_CCACHE ccache)
if(TESSALY_CCACHE)
    set(CMAKE_CXX_COMPILER_LAUNCHER ${TESSALY_CCACHE})
    set(CMAKE_C_COMPILER_LAUNCHER ${TESSALY_CCACHE})
endif()
