// An enumerated entry with every argument at a value that suits most tests, and with its members open.
#ifndef FRONTPANEL_DATA_TESTS_UNIT_ENTRY_ENUM_FIXTURE_H
#define FRONTPANEL_DATA_TESTS_UNIT_ENTRY_ENUM_FIXTURE_H

#include <frontpanel_data/enum_entry.h>

#include <gtest/gtest.h>

#include <map>
#include <string>
#include <utility>
#include <vector>

#include "support/indexes.h"
#include "support/shown_options.h"

// The texts of an entry as the array that it takes.
class Texts {
public:
    explicit Texts(std::vector<std::string> texts) : m_texts(std::move(texts)) {
        for (std::string& text : m_texts) {
            m_array.push_back(text.data());
        }
    }
    Texts(const Texts&) = delete;
    Texts& operator=(const Texts&) = delete;

    char** array() { return m_array.data(); }
    unsigned int size() const { return static_cast<unsigned int>(m_array.size()); }
    // Makes an option one without a text.
    void remove(std::size_t key) { m_array[key] = nullptr; }

private:
    std::vector<std::string> m_texts;
    std::vector<char*> m_array;
};

inline Texts& four_texts() {
    static Texts texts({"Off", "Low", "High", "Auto"});
    return texts;
}

// Written as Enum_arguments().max(2).default_value(1).
class Enum_arguments {
public:
#define ENUM_ARGUMENT(type, name, start) \
    Enum_arguments& name(type value) {   \
        m_##name = value;                \
        return *this;                    \
    }                                    \
    type m_##name = start;

    ENUM_ARGUMENT(Texts*, texts, &four_texts())
    ENUM_ARGUMENT(int, min, 0)
    ENUM_ARGUMENT(int, max, 3)
    ENUM_ARGUMENT(int, default_value, 0)
    ENUM_ARGUMENT(unsigned int, pid, 120)
    ENUM_ARGUMENT(bool, active, true)
    ENUM_ARGUMENT(Data_entry::Data_access, access, Data_entry::READ_WRITE)
    ENUM_ARGUMENT(const char*, web_type, nullptr)
    ENUM_ARGUMENT(const char*, panel_type, nullptr)
    ENUM_ARGUMENT(Live_Data_Processor*, processor, nullptr)
#undef ENUM_ARGUMENT
};

class Open_enum : public Enum_entry {
public:
    explicit Open_enum(const Enum_arguments& with = Enum_arguments())
        : Enum_entry("Mode", "An option", with.m_pid, support::any_index(), with.m_min, with.m_max,
                     with.m_default_value, with.m_texts->array(), with.m_texts->size(), nullptr,
                     with.m_access, VISIBLE_ALL, with.m_active, SHORTCUT_NONE, nullptr, nullptr,
                     nullptr, const_cast<char*>(with.m_web_type),
                     const_cast<char*>(with.m_panel_type), with.m_processor) {}

    using Enum_entry::cached_binding_controls;
    using Enum_entry::control_options;
    using Enum_entry::dynamic_counter;
    using Enum_entry::m_max;
    using Enum_entry::m_max_enum;
    using Enum_entry::m_min;
    using Enum_entry::m_min_enum;
    using Enum_entry::m_model;
    using Enum_entry::m_scroll_delay;
    using Enum_entry::m_scroll_offset;
    using Enum_entry::m_size;
    using Enum_entry::m_size_enum;
    using Enum_entry::m_size_visible;
    using Enum_entry::m_value;
    using Enum_entry::map_enum_to_options;
    using Enum_entry::max_map_size;

    using Positions = std::map<int, int>;

    // Stores a key as the device would deliver it, without any check.
    void put(int key) { m_model.Set(&key, sizeof key); }
    int stored() {
        int key = 0;
        m_model.Get(&key, sizeof key);
        return key;
    }
    int set(int position) { return Set_value(&position, sizeof position); }
    int position() {
        int position = -99;
        EXPECT_EQ(Get_value(&position, sizeof position), 0);
        return position;
    }
    // What one call shows on a line of `length` characters; '?' where it writes nothing.
    std::string shown(unsigned int length = 20, int index = -1, int result = 0) {
        std::string line(length + 1, '?');
        EXPECT_EQ(Get_display_string(line.data(), length, index), result);
        return line.c_str();
    }
    void show_only(const std::vector<int>& keys) { support::show_only(*this, keys); }
};

#endif
