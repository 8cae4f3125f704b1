# Sanitizers and coverage apply to everything in the build, so that no frame goes unwatched.
if(VELTRASDK_SANITIZE)
    add_compile_options(-fsanitize=${VELTRASDK_SANITIZE} -fno-omit-frame-pointer
                        -fno-sanitize-recover=all)
    add_link_options(-fsanitize=${VELTRASDK_SANITIZE})
endif()

if(VELTRASDK_COVERAGE)
    add_compile_options(--coverage -fprofile-update=atomic)
    add_link_options(--coverage)
endif()
