// The binding engine without menu files: a rule limits an entry of the application's own.
#include <frontpanel_binding/binding_registry.h>
#include <frontpanel_binding/caching_device.h>
#include <frontpanel_binding/expression_binding.h>
#include <frontpanel_data/data_entry.h>

#include "device.h"

int main() {
    using namespace frontpanel;
    Device device;
    device.values = {{100, 90}, {102, 1}};
    const auto registry = std::make_shared<Binding_registry>(&device);
    registry->parameters().declare("mode", {INTEGER, 102, {}, 0, 3});
    const Compile_result rules = registry->compile("range 0..40 if [mode] == 1");
    if (!rules.ok()) {
        return 1;
    }
    auto engine = std::make_unique<Expression_binding>(registry);
    engine->addBindingList(rules.list);

    const Index_t index = {0, {0}};
    char format[] = "%d", conversion[] = "v";
    Node_entry menu("Main", "Main", &index, nullptr, Data_entry::VISIBLE_ALL, -1, nullptr, nullptr,
                    nullptr);
    Range_entry level("Level", "Level", 100, &index, 0, 100, 0, format, conversion, &menu,
                      Data_entry::READ_WRITE, Data_entry::VISIBLE_ALL, true, -1, nullptr, nullptr,
                      nullptr);
    level.setValidRangeAndValues({{0, 101, {}}});
    level.Set_binding_object(engine.release());  // the entry owns it

    Caching_device cache(device, registry);
    Data_entry::EntryTypeSpecificOperation(&level, &cache, nullptr, true,
                                           Data_entry::OPERATION_REFRESH, nullptr);
    return device.values[100] == 40 ? 0 : 1;
}
