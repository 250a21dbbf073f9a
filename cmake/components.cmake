# What every component's CMakeLists.txt starts from.

# An installed program finds the library beside it, wherever the tree was moved to.
file(RELATIVE_PATH FRONTPANEL_BIN_TO_LIB /${CMAKE_INSTALL_BINDIR} /${CMAKE_INSTALL_LIBDIR})
set(CMAKE_INSTALL_RPATH $ORIGIN/${FRONTPANEL_BIN_TO_LIB})

set(FRONTPANEL_PACKAGE_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/frontpanel_data)
include(pkgconfig)

# Compiler settings shared by all of our targets. Symbols are hidden unless the export macro marks
# them. Products are never fused with sums, so that an expression yields the same bits on the
# device as on the workstation where its menu was written. Sizes and serial numbers of files have
# 64 bits on 32-bit devices too; times keep the width that the device's other libraries were built
# with, since cpp-httplib passes them.
function(frontpanel_configure_target target)
    frontpanel_enable_warnings(${target})
    target_compile_options(${target} PRIVATE
        -ffp-contract=off
        -fmacro-prefix-map=${PROJECT_SOURCE_DIR}/=)
    target_compile_definitions(${target} PRIVATE _FILE_OFFSET_BITS=64)
    target_compile_features(${target} PRIVATE cxx_std_17)
    set_target_properties(${target} PROPERTIES
        CXX_EXTENSIONS OFF
        CXX_VISIBILITY_PRESET hidden
        VISIBILITY_INLINES_HIDDEN ON)
endfunction()

# frontpanel_add_component(<name> DESCRIPTION <text> SOURCES <file>...
#                          [LIBRARIES <library>...] [PRIVATE_LIBRARIES <library>...]
#                          [COMPONENTS <name>...] [PACKAGES <pkg-config package>...]
#                          [OPENED_PACKAGES <pkg-config package>...])
#
# A static library frontpanel_<name> whose public headers are in include/ beside its sources. It
# is installed as a component of the package: frontpanel_data::<name> for find_package,
# frontpanel_<name> for pkg-config. COMPONENTS are the components of ours that it uses,
# LIBRARIES what else its headers show, PRIVATE_LIBRARIES what only its sources use. PACKAGES are
# the pkg-config packages that an executable needs beside it, OPENED_PACKAGES those of which it needs
# only the headers to be built: it opens the library itself, when it has a use for it.
function(frontpanel_add_component name)
    cmake_parse_arguments(PARSE_ARGV 1 arg "" "DESCRIPTION"
        "SOURCES;COMPONENTS;LIBRARIES;PRIVATE_LIBRARIES;PACKAGES;OPENED_PACKAGES")
    set(target frontpanel_${name})
    list(TRANSFORM arg_COMPONENTS PREPEND frontpanel_ OUTPUT_VARIABLE components)

    # For the package's configuration: what has to be found first.
    set(below ${arg_COMPONENTS})
    list(REMOVE_ITEM below data)
    set_property(GLOBAL APPEND PROPERTY FRONTPANEL_COMPONENTS ${name})
    set_property(GLOBAL PROPERTY FRONTPANEL_BELOW_${name} ${below})
    set_property(GLOBAL APPEND_STRING PROPERTY FRONTPANEL_COMPONENT_TABLE
        "set(_frontpanel_data_${name}_needs ${below})\n")

    add_library(${target} STATIC ${arg_SOURCES})
    add_library(frontpanel_data::${name} ALIAS ${target})
    frontpanel_configure_target(${target})
    set_target_properties(${target} PROPERTIES
        EXPORT_NAME ${name}
        POSITION_INDEPENDENT_CODE ON)
    target_include_directories(${target}
        PUBLIC $<BUILD_INTERFACE:${CMAKE_CURRENT_SOURCE_DIR}/include>
               $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>
        PRIVATE ${CMAKE_CURRENT_SOURCE_DIR})
    target_link_libraries(${target}
        PUBLIC ${components} ${arg_LIBRARIES}
        PRIVATE ${arg_PRIVATE_LIBRARIES})
    foreach(package IN LISTS arg_OPENED_PACKAGES)
        pkg_check_modules(${package} REQUIRED IMPORTED_TARGET GLOBAL ${package})
        target_include_directories(${target} SYSTEM PRIVATE ${${package}_INCLUDE_DIRS})
    endforeach()

    install(TARGETS ${target}
        EXPORT ${target}Targets
        ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
        COMPONENT ${name})
    install(DIRECTORY ${CMAKE_CURRENT_SOURCE_DIR}/include/frontpanel_${name}
        DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}
        COMPONENT ${name}
        FILES_MATCHING PATTERN "*.h")
    install(EXPORT ${target}Targets
        NAMESPACE frontpanel_data::
        DESTINATION ${FRONTPANEL_PACKAGE_DIR}
        COMPONENT ${name})
    frontpanel_install_pkgconfig(${target} COMPONENT ${name}
        DESCRIPTION ${arg_DESCRIPTION}
        REQUIRES ${components} ${arg_PACKAGES})
endfunction()

# frontpanel_components_below(<variable> [<component>...]): the components and all that they use.
function(frontpanel_components_below out)
    set(all "")
    foreach(component IN LISTS ARGN)
        get_property(below GLOBAL PROPERTY FRONTPANEL_BELOW_${component})
        frontpanel_components_below(more ${below})
        list(APPEND all ${more} ${component})
    endforeach()
    list(REMOVE_DUPLICATES all)
    set(${out} ${all} PARENT_SCOPE)
endfunction()
