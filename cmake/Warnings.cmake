# The warning set of the project; CMAKE_COMPILE_WARNING_AS_ERROR (set by the development presets)
# makes errors of them.
set(veltrasdk_warnings_c -Wall -Wextra -Wpedantic -Wconversion -Wsign-conversion -Wshadow)
set(veltrasdk_warnings_cxx ${veltrasdk_warnings_c}
    -Wold-style-cast -Wnon-virtual-dtor -Woverloaded-virtual -Wextra-semi)

add_library(veltrasdk_warnings INTERFACE)
target_compile_options(veltrasdk_warnings INTERFACE
    "$<$<COMPILE_LANGUAGE:C>:${veltrasdk_warnings_c}>"
    "$<$<COMPILE_LANGUAGE:CXX>:${veltrasdk_warnings_cxx}>")
