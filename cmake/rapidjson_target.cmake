# Gives rapidjson a target. Its package sets only a variable, and a variable would put this
# machine's include path into the exported package. Installed beside the package configuration.
macro(frontpanel_data_find_rapidjson)
    if(NOT TARGET frontpanel_data::rapidjson)
        find_package(RapidJSON 1.1 REQUIRED CONFIG)
        add_library(frontpanel_data::rapidjson INTERFACE IMPORTED)
        target_include_directories(frontpanel_data::rapidjson SYSTEM
            INTERFACE ${RAPIDJSON_INCLUDE_DIRS} ${RapidJSON_INCLUDE_DIRS})
    endif()
endmacro()
