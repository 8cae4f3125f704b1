# The warning set of the project; CMAKE_COMPILE_WARNING_AS_ERROR (set by the development presets)
# makes errors of them.
add_library(veltrasdk_warnings INTERFACE)
target_compile_options(veltrasdk_warnings INTERFACE
    -Wall -Wextra -Wpedantic -Wconversion -Wsign-conversion -Wshadow
    $<$<COMPILE_LANGUAGE:CXX>:-Wold-style-cast>
    $<$<COMPILE_LANGUAGE:CXX>:-Wnon-virtual-dtor>
    $<$<COMPILE_LANGUAGE:CXX>:-Woverloaded-virtual>
    $<$<COMPILE_LANGUAGE:CXX>:-Wextra-semi>)
