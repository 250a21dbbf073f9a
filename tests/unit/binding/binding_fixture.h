// Entries with engines on a device in memory.
#ifndef FRONTPANEL_DATA_TESTS_UNIT_BINDING_BINDING_FIXTURE_H
#define FRONTPANEL_DATA_TESTS_UNIT_BINDING_BINDING_FIXTURE_H

#include <frontpanel_binding/expression_binding.h>
#include <frontpanel_data/data_entry.h>
#include <frontpanel_simulator/memory_device.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "support/capture.h"
#include "support/indexes.h"

namespace binding_fixture {

using namespace frontpanel;

inline return_s number(int32_t value) {
    return_s result;
    result.rt = INTEGER;
    result.i = value;
    return result;
}

// A range entry of one level, all of whose values are allowed.
class Number_entry : public Range_entry {
public:
    Number_entry(const char* name, unsigned int pid, const Index_t& index, int min, int max)
        : Number_entry(name, pid, index, min, max, std::string()) {}

    int value() {
        int stored = 0;
        m_model.Get(&stored, sizeof stored);
        return stored;
    }

private:
    Number_entry(const char* name, unsigned int pid, const Index_t& index, int min, int max,
                 std::string no_format)
        : Range_entry(name, "A number", pid, &index, min, max, min, no_format.data(),
                      no_format.data(), nullptr, READ_WRITE, VISIBLE_ALL, true, SHORTCUT_NONE,
                      nullptr, nullptr, nullptr) {
        setValidRangeAndValues({{min, max + 1, {}}});
    }
};

struct Option_texts {
    std::vector<std::string> texts = {"Off", "Low", "Mid", "High"};
    std::vector<char*> array = {texts[0].data(), texts[1].data(), texts[2].data(), texts[3].data()};
};

// An enumerated entry with the keys 0 to 3.
class Option_entry : private Option_texts, public Enum_entry {
public:
    Option_entry(const char* name, unsigned int pid, const Index_t& index)
        : Enum_entry(name, "A choice", pid, &index, 0, 3, 0, array.data(), 4, nullptr, READ_WRITE,
                     VISIBLE_ALL, true, SHORTCUT_NONE, nullptr, nullptr, nullptr, nullptr, nullptr,
                     nullptr) {}

    // The keys with a visible position.
    std::vector<int> shown() const {
        std::vector<int> keys;
        for (const auto& [key, position] : map_enum_to_options) {
            if (position >= 0) {
                keys.push_back(key);
            }
        }
        return keys;
    }
};

class Binding_fixture : public testing::Test {
protected:
    BindingListT compiled(const std::string& source) {
        const Compile_result result = registry->compile(source);
        EXPECT_TRUE(result.ok()) << source << ": " << result.error->text();
        return result.list;
    }
    // The entry owns the engine.
    Expression_binding* bind(Data_entry& entry, const std::string& source) {
        auto* const engine = new Expression_binding(registry);
        if (!source.empty()) {
            engine->addBindingList(compiled(source));
        }
        entry.Set_binding_object(engine);
        return engine;
    }
    int refresh(Data_entry& entry, Data_interface* iface = nullptr) {
        int result = 0;
        support::capture(0, [&] {
            result = Data_entry::EntryTypeSpecificOperation(
                &entry, iface != nullptr ? iface : &device, nullptr, true,
                Data_entry::OPERATION_REFRESH, nullptr);
        });
        return result;
    }
    static int evaluate(Expression_binding& engine, int flags = Binding::EXECUTE_FLAG) {
        return engine.evaluateAllBindingExpressions(&flags);
    }
    // Sets and commits a value as an editor does.
    template <typename Entry>
    static void commit(Entry& entry, int value, Data_interface* iface) {
        entry.Set_value(&value, sizeof value);
        support::capture(0, [&] { EXPECT_EQ(entry.Commit(iface), Data_entry::OK); });
    }

    Memory_device device;
    std::shared_ptr<Binding_registry> registry = std::make_shared<Binding_registry>(&device);
    const Index_t no_level = support::index_of({});
};

}  // namespace binding_fixture

#endif
