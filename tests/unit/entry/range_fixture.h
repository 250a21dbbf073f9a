// A range entry with every argument at a value that suits most tests, and with its members open to them.
#ifndef FRONTPANEL_DATA_TESTS_UNIT_ENTRY_RANGE_FIXTURE_H
#define FRONTPANEL_DATA_TESTS_UNIT_ENTRY_RANGE_FIXTURE_H

#include <frontpanel_data/range_entry.h>

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "support/indexes.h"

struct Range_arguments {
    int min = 0;
    int max = 100;
    int default_value = 10;
    std::string format = "";
    std::string value_format = "";
    bool active = true;
    Data_entry::Data_access access = Data_entry::READ_WRITE;
    const char* name = "Gain";
    unsigned int pid = 120;
};

class Open_range : public Range_entry {
public:
    explicit Open_range(Range_arguments arguments = {})
        : Range_entry(arguments.name, "A range", arguments.pid, support::any_index(), arguments.min,
                      arguments.max, arguments.default_value, arguments.format.data(),
                      arguments.value_format.data(), nullptr, arguments.access, VISIBLE_ALL,
                      arguments.active, SHORTCUT_NONE, nullptr, nullptr, nullptr) {}

    using Range_entry::bindRange;
    using Range_entry::m_max;
    using Range_entry::m_max_from_constructor;
    using Range_entry::m_min;
    using Range_entry::m_min_from_constructor;
    using Range_entry::m_model;
    using Range_entry::min_max_mutex;
    using Range_entry::optionMinAndMaxProcessed;
    using Range_entry::optionRangeOutcome;
    using Range_entry::valid_ranges_and_values;
    using Range_entry::valid_ranges_and_values_ANDED;

    // Stores a value as the device would deliver it, without any check.
    void put(int value) { m_model.Set(&value, sizeof value); }
    int value() {
        int stored = 0;
        m_model.Get(&stored, sizeof stored);
        return stored;
    }
    // The display text of a value on a line of `length` characters.
    std::string shown(int value, unsigned int length = 40) {
        std::string line(length + 1, '?');
        EXPECT_EQ(Get_display_string(line.data(), length, value), 0);
        return line.c_str();
    }
};

// "[0, 10) [20, 30) gps slot3": half-open ranges, each followed by its options.
inline std::string text_of(const std::vector<range_s>& ranges) {
    std::string text;
    for (const range_s& range : ranges) {
        text += text.empty() ? "[" : " [";
        text +=
            std::to_string(range.min_inclusive) + ", " + std::to_string(range.max_exclusive) + ")";
        for (const std::string& option : range.options) {
            text += " " + option;
        }
    }
    return text;
}

#endif
