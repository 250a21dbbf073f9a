#include "mosquitto_library.h"

#include <gtest/gtest.h>

namespace frontpanel {
namespace {

TEST(MosquittoLibrary, IsOpenedOnce) {
    const Mosquitto_library& library = mosquitto_library();
    ASSERT_EQ(library.fault, "");
    EXPECT_EQ(&mosquitto_library(), &library);
    EXPECT_STREQ(library.mosquitto_strerror(MOSQ_ERR_NO_CONN),
                 mosquitto_strerror(MOSQ_ERR_NO_CONN));
}

TEST(MosquittoLibrary, AFileThatIsMissingIsNamed) {
    const Mosquitto_library library = open_mosquitto("libmosquitto.so.none");
    EXPECT_EQ(
        library.fault,
        "MQTT needs a library that cannot be opened: libmosquitto.so.none: cannot open shared "
        "object file: No such file or directory");
    EXPECT_EQ(library.mosquitto_new, nullptr);
}

TEST(MosquittoLibrary, AFunctionThatIsMissingIsNamed) {
    const Mosquitto_library library = open_mosquitto("libc.so.6");
    EXPECT_NE(library.fault.find("undefined symbol: mosquitto_"), std::string::npos)
        << library.fault;
    EXPECT_EQ(library.mosquitto_new, nullptr);
}

}  // namespace
}  // namespace frontpanel
