# Gives rapidjson a target. Its package sets only a variable, and a variable would put this
# machine's include path into the exported package. The variable is the same in every root folder, so
# the headers are searched. Installed beside the package configuration.
macro(frontpanel_data_find_rapidjson)
    if(NOT TARGET frontpanel_data::rapidjson)
        find_package(RapidJSON 1.1 REQUIRED CONFIG)
        find_path(FRONTPANEL_RAPIDJSON_INCLUDE_DIR rapidjson/rapidjson.h
            HINTS ${RAPIDJSON_INCLUDE_DIRS} ${RapidJSON_INCLUDE_DIRS}
            REQUIRED)
        mark_as_advanced(FRONTPANEL_RAPIDJSON_INCLUDE_DIR)
        add_library(frontpanel_data::rapidjson INTERFACE IMPORTED)
        target_include_directories(frontpanel_data::rapidjson SYSTEM
            INTERFACE ${FRONTPANEL_RAPIDJSON_INCLUDE_DIR})
    endif()
endmacro()
