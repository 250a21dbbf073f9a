// libmosquitto, opened when the first broker is needed. Together with OpenSSL it takes 1.8 MiB of every process that is
// linked to it, and a device without brokers need not have it.
#ifndef FRONTPANEL_DRIVER_MQTT_MOSQUITTO_LIBRARY_H
#define FRONTPANEL_DRIVER_MQTT_MOSQUITTO_LIBRARY_H

#include <mosquitto.h>

#include <optional>
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

// The members are the functions, under their own names; none is null.
struct Mosquitto_library {
// A member's name takes no parentheses. NOLINTNEXTLINE(bugprone-macro-parentheses)
#define FRONTPANEL_MEMBER(name) decltype(&::name) name = nullptr;
    FRONTPANEL_MOSQUITTO_FUNCTIONS(FRONTPANEL_MEMBER)
#undef FRONTPANEL_MEMBER
};

// Opens the library with this file name or path. Empty when it cannot be used: `fault` has the reason then.
std::optional<Mosquitto_library> open_mosquitto(const char* file, std::string& fault);
// The library of the process: each call tries to open it until one succeeds. Null when it cannot be used: `fault` has the
// reason then. From any thread; valid until the process ends.
const Mosquitto_library* mosquitto_library(std::string& fault);

}  // namespace frontpanel

#endif
