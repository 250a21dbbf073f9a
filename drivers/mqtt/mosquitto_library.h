// libmosquitto, opened when the first broker is needed. Together with OpenSSL it takes 1.8 MiB of every process that is
// linked to it, and a device without brokers need not have it.
#ifndef FRONTPANEL_DRIVER_MQTT_MOSQUITTO_LIBRARY_H
#define FRONTPANEL_DRIVER_MQTT_MOSQUITTO_LIBRARY_H

#include <mosquitto.h>

#include <string>

// The functions of the library that the driver calls.
#define FRONTPANEL_MOSQUITTO_FUNCTIONS(FUNCTION) \
    FUNCTION(mosquitto_connack_string)           \
    FUNCTION(mosquitto_connect_async)            \
    FUNCTION(mosquitto_connect_bind_v5)          \
    FUNCTION(mosquitto_connect_v5_callback_set)  \
    FUNCTION(mosquitto_destroy)                  \
    FUNCTION(mosquitto_disconnect)               \
    FUNCTION(mosquitto_int_option)               \
    FUNCTION(mosquitto_lib_init)                 \
    FUNCTION(mosquitto_log_callback_set)         \
    FUNCTION(mosquitto_loop_misc)                \
    FUNCTION(mosquitto_loop_read)                \
    FUNCTION(mosquitto_loop_write)               \
    FUNCTION(mosquitto_message_callback_set)     \
    FUNCTION(mosquitto_new)                      \
    FUNCTION(mosquitto_property_add_int32)       \
    FUNCTION(mosquitto_property_free_all)        \
    FUNCTION(mosquitto_publish)                  \
    FUNCTION(mosquitto_publish_v5_callback_set)  \
    FUNCTION(mosquitto_reason_string)            \
    FUNCTION(mosquitto_socket)                   \
    FUNCTION(mosquitto_strerror)                 \
    FUNCTION(mosquitto_subscribe_callback_set)   \
    FUNCTION(mosquitto_subscribe_multiple)       \
    FUNCTION(mosquitto_tls_set)                  \
    FUNCTION(mosquitto_username_pw_set)          \
    FUNCTION(mosquitto_want_write)               \
    FUNCTION(mosquitto_will_set)

namespace frontpanel {

// The members are the functions, under their own names. All are null where the library cannot be used.
struct Mosquitto_library {
#define FRONTPANEL_MEMBER(name) decltype(&::name) name = nullptr;
    FRONTPANEL_MOSQUITTO_FUNCTIONS(FRONTPANEL_MEMBER)
#undef FRONTPANEL_MEMBER

    std::string fault = {};  // why the library cannot be used; empty: it can
};

// Opens the library with this file name or path.
Mosquitto_library open_mosquitto(const char* file);
// That of the process, which the first call opens. From any thread.
const Mosquitto_library& mosquitto_library();

}  // namespace frontpanel

#endif
