# What every component's CMakeLists.txt starts from.

# An installed program finds the library beside it, wherever the tree was moved to.
file(RELATIVE_PATH FRONTPANEL_BIN_TO_LIB /${CMAKE_INSTALL_BINDIR} /${CMAKE_INSTALL_LIBDIR})
set(CMAKE_INSTALL_RPATH $ORIGIN/${FRONTPANEL_BIN_TO_LIB})

# Compiler settings shared by all of our targets. Symbols are hidden unless the export macro marks
# them. Products are never fused with sums, so that an expression yields the same bits on the
# device as on the workstation where its menu was written.
function(frontpanel_configure_target target)
    frontpanel_enable_warnings(${target})
    target_compile_options(${target} PRIVATE
        -ffp-contract=off
        -fmacro-prefix-map=${PROJECT_SOURCE_DIR}/=)
    set_target_properties(${target} PROPERTIES
        CXX_VISIBILITY_PRESET hidden
        VISIBILITY_INLINES_HIDDEN ON)
endfunction()

# frontpanel_add_static_component(<target> SOURCES <file>...
#                                 [LIBRARIES <library>...] [PRIVATE_LIBRARIES <library>...])
#
# A static library whose public headers stand in include/ beside its sources. LIBRARIES are those
# that its headers show; the others are private.
function(frontpanel_add_static_component name)
    cmake_parse_arguments(PARSE_ARGV 1 arg "" "" "SOURCES;LIBRARIES;PRIVATE_LIBRARIES")
    add_library(${name} STATIC ${arg_SOURCES})
    add_library(frontpanel_data::${name} ALIAS ${name})
    frontpanel_configure_target(${name})
    target_include_directories(${name}
        PUBLIC ${CMAKE_CURRENT_SOURCE_DIR}/include
        PRIVATE ${CMAKE_CURRENT_SOURCE_DIR})
    target_link_libraries(${name} PUBLIC ${arg_LIBRARIES} PRIVATE ${arg_PRIVATE_LIBRARIES})
endfunction()
