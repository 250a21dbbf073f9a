// One builder a kind of item: see `Entry_kind::build`.
#ifndef FRONTPANEL_MENU_BUILDERS_H
#define FRONTPANEL_MENU_BUILDERS_H

namespace frontpanel {

class Json_value;
struct Load_context;
struct Spot;

void build_node(Load_context& context, const Json_value& item, const Spot& spot);
void build_range(Load_context& context, const Json_value& item, const Spot& spot);
void build_text(Load_context& context, const Json_value& item, const Spot& spot);
void build_address(Load_context& context, const Json_value& item, const Spot& spot);
void build_time(Load_context& context, const Json_value& item, const Spot& spot);
void build_warning(Load_context& context, const Json_value& item, const Spot& spot);
void build_enum(Load_context& context, const Json_value& item, const Spot& spot);
// An enumeration whose options come from a card.
void build_live(Load_context& context, const Json_value& item, const Spot& spot);
void build_slot(Load_context& context, const Json_value& item, const Spot& spot);
void build_link(Load_context& context, const Json_value& item, const Spot& spot);
void build_bridge(Load_context& context, const Json_value& item, const Spot& spot);
void build_mount(Load_context& context, const Json_value& item, const Spot& spot);

}  // namespace frontpanel

#endif
