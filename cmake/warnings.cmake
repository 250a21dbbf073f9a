# The warnings that every target of ours is compiled with. They become errors in the presets
# (CMAKE_COMPILE_WARNING_AS_ERROR), so that a packager's newer compiler does not break the build.
function(frontpanel_enable_warnings target)
    target_compile_options(${target} PRIVATE
        -Wall
        -Wextra
        -Wpedantic
        -Wcast-qual
        -Wconversion
        -Wextra-semi
        -Wformat=2
        -Wimplicit-fallthrough
        -Wnon-virtual-dtor
        -Wnull-dereference
        # Optimised, GCC reports it of inlined code of the standard headers, so it is never an error.
        -Wno-error=null-dereference
        -Woverloaded-virtual
        -Wshadow
        -Wsign-conversion
        -Wundef
        $<$<CXX_COMPILER_ID:GNU>:-Wduplicated-branches>
        $<$<CXX_COMPILER_ID:GNU>:-Wduplicated-cond>
        $<$<CXX_COMPILER_ID:GNU>:-Wlogical-op>)
endfunction()
