# FRONTPANEL_SANITIZE is a comma-separated list for -fsanitize, e.g. "address,undefined" or "thread".
# It holds for the whole tree, since a sanitized library needs a sanitized executable.
set(FRONTPANEL_SANITIZE "" CACHE STRING "Sanitizers to build with, comma-separated")

if(FRONTPANEL_SANITIZE)
    add_compile_options(
        -fsanitize=${FRONTPANEL_SANITIZE}
        -fno-sanitize-recover=all
        -fno-omit-frame-pointer
        # GCC loses track of initialisation in instrumented code, in the standard headers too.
        $<$<CXX_COMPILER_ID:GNU>:-Wno-maybe-uninitialized>)
    add_link_options(-fsanitize=${FRONTPANEL_SANITIZE})
    if(CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
        add_compile_options(-fsanitize-ignorelist=${CMAKE_CURRENT_LIST_DIR}/sanitizer_ignorelist.txt)
    endif()
endif()
