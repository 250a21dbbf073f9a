# Installs the library, its headers and its descriptions for find_package and pkg-config. The other
# components install themselves: see frontpanel_add_component.
include(CMakePackageConfigHelpers)

install(TARGETS frontpanel_data
    EXPORT frontpanel_dataTargets
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
        COMPONENT Runtime
        NAMELINK_COMPONENT Development)
install(DIRECTORY ${PROJECT_SOURCE_DIR}/include/frontpanel_data
    DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}
    COMPONENT Development
    FILES_MATCHING PATTERN "*.h")

install(FILES ${PROJECT_SOURCE_DIR}/LICENSE
    DESTINATION ${CMAKE_INSTALL_DOCDIR}
    COMPONENT Runtime)

install(EXPORT frontpanel_dataTargets
    NAMESPACE frontpanel_data::
    DESTINATION ${FRONTPANEL_PACKAGE_DIR}
    COMPONENT Development)
get_property(FRONTPANEL_COMPONENT_TABLE GLOBAL PROPERTY FRONTPANEL_COMPONENT_TABLE)
configure_package_config_file(
    ${CMAKE_CURRENT_LIST_DIR}/frontpanel_dataConfig.cmake.in
    ${PROJECT_BINARY_DIR}/frontpanel_dataConfig.cmake
    INSTALL_DESTINATION ${FRONTPANEL_PACKAGE_DIR})
write_basic_package_version_file(
    ${PROJECT_BINARY_DIR}/frontpanel_dataConfigVersion.cmake
    COMPATIBILITY SameMinorVersion)
install(FILES
    ${PROJECT_BINARY_DIR}/frontpanel_dataConfig.cmake
    ${PROJECT_BINARY_DIR}/frontpanel_dataConfigVersion.cmake
    ${CMAKE_CURRENT_LIST_DIR}/rapidjson_target.cmake
    DESTINATION ${FRONTPANEL_PACKAGE_DIR}
    COMPONENT Development)

frontpanel_install_pkgconfig(frontpanel_data COMPONENT Development
    DESCRIPTION ${PROJECT_DESCRIPTION}
    REQUIRES RapidJSON)
