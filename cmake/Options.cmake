# Flags for every target of this tree.
add_library(orvo_options INTERFACE)
target_compile_options(orvo_options INTERFACE
    -Wall -Wextra -Wpedantic -Werror -Wshadow -Wconversion -Wnon-virtual-dtor -Wold-style-cast)
if(ORVO_SANITIZE)
    target_compile_options(orvo_options INTERFACE
        -fsanitize=${ORVO_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
    target_link_options(orvo_options INTERFACE -fsanitize=${ORVO_SANITIZE})
endif()
