# Flags for every target of this tree.
add_library(orvo_options INTERFACE)
target_compile_options(orvo_options INTERFACE
    -ffp-contract=off  # tile edges are accumulated in plain doubles, the same on every processor
    -Wall -Wextra -Wpedantic -Werror -Wshadow -Wconversion -Wold-style-cast
    $<$<NOT:$<PLATFORM_ID:Windows>>:-Wnon-virtual-dtor>)  # COM interfaces have no virtual destructors
# g++ 12 at -O3 sees overlaps in "text" + std::string, and overflows in vector::insert, that are not there (its bugs
# 105651 and 105329).
target_compile_options(orvo_options INTERFACE
    $<$<CXX_COMPILER_ID:GNU>:-Wno-restrict> $<$<CXX_COMPILER_ID:GNU>:-Wno-stringop-overflow>)
if(ORVO_SANITIZE)
    target_compile_options(orvo_options INTERFACE
        -fsanitize=${ORVO_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer
        # GCC bug 105562: std::regex under the sanitizers.
        $<$<CXX_COMPILER_ID:GNU>:-Wno-maybe-uninitialized>)
    target_link_options(orvo_options INTERFACE -fsanitize=${ORVO_SANITIZE})
endif()
