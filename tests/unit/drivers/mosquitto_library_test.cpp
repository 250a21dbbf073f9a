#include "mosquitto_library.h"

#include <gtest/gtest.h>

namespace frontpanel {
namespace {

TEST(MosquittoLibrary, IsOpenedOnce) {
    std::string fault;
    const Mosquitto_library* const library = mosquitto_library(fault);
    ASSERT_NE(library, nullptr) << fault;
    EXPECT_EQ(mosquitto_library(fault), library);
    EXPECT_STREQ(library->mosquitto_strerror(MOSQ_ERR_NO_CONN),
                 mosquitto_strerror(MOSQ_ERR_NO_CONN));
}

TEST(MosquittoLibrary, AFileThatIsMissingIsNamed) {
    std::string fault;
    EXPECT_FALSE(open_mosquitto("libmosquitto.so.none", fault));
    EXPECT_EQ(
        fault,
        "MQTT needs a library that cannot be opened: libmosquitto.so.none: cannot open shared "
        "object file: No such file or directory");
}

TEST(MosquittoLibrary, AFunctionThatIsMissingIsNamed) {
    std::string fault;
    EXPECT_FALSE(open_mosquitto("libc.so.6", fault));
    EXPECT_NE(fault.find("undefined symbol: mosquitto_"), std::string::npos) << fault;
}

}  // namespace
}  // namespace frontpanel
