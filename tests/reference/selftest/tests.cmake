# The reference itself, which these tests hold against closed forms.
file(GLOB reference_sources CONFIGURE_DEPENDS ${folder}/../*.cpp)
target_sources(${target} PRIVATE ${reference_sources})
