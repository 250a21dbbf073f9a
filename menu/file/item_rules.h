// The rules of an item, from the text of the file to the engine of its entry.
#ifndef FRONTPANEL_MENU_ITEM_RULES_H
#define FRONTPANEL_MENU_ITEM_RULES_H

#include <frontpanel_data/data_entry.h>

#include <optional>

#include "file/load_context.h"

namespace frontpanel {

// The lowest and the highest value of an entry.
struct Bounds {
    int min;
    int max;
};

// Compiles "binding" of an item, if it has one, and gives it to the entry. `bounds` are those of a number, which
// ranges must overlap.
void bind(Load_context& context, const Json_value& item, Data_entry& entry,
          std::optional<Bounds> bounds = std::nullopt);

// Translates the condition of a homescreen link. Throws Placed_error at what is wrong with it.
Toggle_result compile_condition(Load_context& context, const Json_value& source);

}  // namespace frontpanel

#endif
