#include <frontpanel_drivers/driver.h>

#include <gtest/gtest.h>

#include "driver_news.h"
#include "support/scripted_driver.h"

namespace support {
namespace {

// A driver of a device that sends nothing by itself.
class Silent_driver : public frontpanel::Driver {
public:
    void add(const frontpanel::Json_value& /*source*/,
             const frontpanel::Driver_parameter& /*parameter*/) override {}
    Driver_result connect() override { return Driver_result::done(); }
    Driver_result read(const std::vector<std::size_t>& /*numbers*/,
                       frontpanel::Value_sink& /*sink*/) override {
        return Driver_result::done();
    }
    Driver_result write(std::size_t /*number*/, const Parameter_value& /*value*/) override {
        return Driver_result::done();
    }
};

class No_sink : public frontpanel::Value_sink {
    void value(std::size_t /*number*/, const Parameter_value& /*value*/) override {}
    void failure(std::size_t /*number*/, const std::string& /*reason*/) override {}
};

TEST(Driver, TheBaseWaitsForTheWakeDescriptorAndDoesNotReadIt) {
    const frontpanel::Wake_descriptor wake;
    wake.raise();
    No_sink sink;
    Silent_driver driver;
    EXPECT_EQ(driver.wait(std::chrono::hours(1), wake.number(), sink).kind, Driver_result::DONE);
    EXPECT_TRUE(wake.take());
}

TEST(Driver, TheBasePollsEveryParameter) {
    EXPECT_FALSE(Silent_driver().pushes(0));
}

}  // namespace
}  // namespace support
