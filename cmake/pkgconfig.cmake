# frontpanel_install_pkgconfig(<library> COMPONENT <name> DESCRIPTION <text> [REQUIRES <package>...])
#
# Installs <library>.pc. The prefix is worked out from the file's own place, so an installed tree can
# be moved.
file(RELATIVE_PATH FRONTPANEL_PKGCONFIG_PREFIX
    /${CMAKE_INSTALL_LIBDIR}/pkgconfig /)

function(frontpanel_install_pkgconfig library)
    cmake_parse_arguments(PARSE_ARGV 1 arg "" "COMPONENT;DESCRIPTION" "REQUIRES")
    list(JOIN arg_REQUIRES " " requires)
    configure_file(
        ${PROJECT_SOURCE_DIR}/cmake/package.pc.in
        ${PROJECT_BINARY_DIR}/pkgconfig/${library}.pc
        @ONLY)
    install(FILES ${PROJECT_BINARY_DIR}/pkgconfig/${library}.pc
        DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig
        COMPONENT ${arg_COMPONENT})
endfunction()
