#include <frontpanel_editors/enum_editor.h>

#include <algorithm>
#include <string>
#include <utility>

#include <frontpanel_editors/value_text.h>

namespace frontpanel {

Enum_editor::Enum_editor() = default;
Enum_editor::~Enum_editor() = default;

void Enum_editor::Set_use_line_info(bool use_line_info) {
    m_use_line_info = use_line_info;
}

void Enum_editor::Set_selected(int32_t selected) {
    m_selected = selected;
}

void Enum_editor::Set_selected_line(int32_t selected_line) {
    m_selected_line = selected_line;
}

void Enum_editor::start() {
    read_slot_lines();
    m_text = Scrolling_text();
    take(own_position());
    m_is_nowhere = holds_no_option(edited());
}

// The place of the entry's own choice among those that can be chosen.
int Enum_editor::own_position() {
    int position = 0;
    edited().Get_value(&position, sizeof position);
    const Positions positions = choices();
    return positions.none() ? position : std::clamp(position, positions.first, positions.last);
}

void Enum_editor::remember() {
    m_opened = m_option;
}

bool Enum_editor::put_back() {
    const std::optional<int> position = position_of(m_opened);
    return position && edited().Set_value(&*position, sizeof *position) == 0;
}

bool Enum_editor::is_stored() {
    return own_position() == m_proposed;
}

void Enum_editor::show_value() {
    take(own_position());
    m_is_nowhere = holds_no_option(edited());
}

Editor_change Enum_editor::adapt() {
    if (choices().none()) {
        return Editor_change::NO_VALUE;
    }
    if (options() == m_options || edited().Get_entry_type() == Data_entry::SLOT_ENUM) {
        return Editor_change::NONE;
    }
    const std::optional<int> kept = position_of(m_option);
    take(kept.value_or(own_position()));
    return kept ? Editor_change::KEPT : Editor_change::MOVED;
}

void Enum_editor::take(int position) {
    m_proposed = position;
    m_option = option_at(position);
    m_options = options();
    m_text.update(m_option.text);
}

// The entry answers a position outside its keys' limits with another option's text, so these are left out.
Enum_editor::Positions Enum_editor::choices() const {
    int smallest = 0;
    int largest = 0;
    int size = 0;
    edited().minMaxSize(&smallest, &largest, &size);
    if (size == 0) {
        return {0, -1};
    }
    return {std::max(smallest, edited().Get_min()), std::min(largest, edited().Get_max())};
}

void Enum_editor::step(Editor_key key, int /*steps*/) {
    if (key != Editor_key::UP && key != Editor_key::DOWN) {
        return;
    }
    if (std::exchange(m_is_nowhere, false)) {
        propose(m_proposed);
    } else {
        propose(key == Editor_key::UP ? m_proposed + 1 : m_proposed - 1);
    }
}

void Enum_editor::propose(int position) {
    const Positions positions = choices();
    if (positions.none()) {
        return;
    }
    if (wraps() && position > positions.last) {
        position = positions.first;
    } else if (wraps() && position < positions.first) {
        position = positions.last;
    }
    m_selected = std::clamp(position, positions.first, positions.last);
    read_slot_lines();
    take(m_selected);
}

void Enum_editor::read_slot_lines() {
    auto* const slots = dynamic_cast<Slot_enum_entry*>(entry());
    Data_interface* const device = VarIdDataInfStore::m_pDataAccessInf;
    if (slots != nullptr && device != nullptr && m_use_line_info) {
        slots->Refresh(device, false, m_selected, m_selected_line, true);
    }
}

Enum_editor::Option Enum_editor::option_at(int position) {
    int key = -1;
    if (!choices().none()) {
        edited().Get_value(&key, sizeof key, position);
    }
    return {key, option_text(edited(), position)};
}

std::vector<Enum_editor::Option> Enum_editor::options() {
    std::vector<Option> all;
    const Positions positions = choices();
    for (int position = positions.first; position <= positions.last; ++position) {
        all.push_back(option_at(position));
    }
    return all;
}

// Nothing when no such option can be chosen. The same text in another place is the same option, unless the same
// place has it too; in a slot list the place alone decides, since its aliases come and go.
std::optional<int> Enum_editor::position_of(const Option& option) {
    const bool is_slot_list = edited().Get_entry_type() == Data_entry::SLOT_ENUM;
    const std::vector<Option> all = options();
    const auto same_key = std::find_if(all.begin(), all.end(), [&](const Option& candidate) {
        return candidate.key == option.key && (is_slot_list || candidate.text == option.text);
    });
    const auto same_text = std::find_if(all.begin(), all.end(), [&](const Option& candidate) {
        return candidate.text == option.text;
    });
    const auto found = same_key != all.end() || is_slot_list ? same_key : same_text;
    if (found == all.end()) {
        return std::nullopt;
    }
    return choices().first + static_cast<int>(found - all.begin());
}

bool Enum_editor::accept() {
    return !m_is_nowhere && !choices().none() &&
           edited().Set_value(&m_proposed, sizeof m_proposed) == 0;
}

void Enum_editor::draw(int columns, Editor_view& shown) {
    if (m_is_nowhere) {
        shown.text = NO_OPTION_TEXT;
        return;
    }
    shown.text = m_text.show(columns);
    const Positions positions = choices();
    if (positions.none()) {
        return;
    }
    const std::string place = std::to_string(m_proposed - positions.first + 1) + "/" +
                              std::to_string(positions.last - positions.first + 1);
    if (width_of(edited().Get_name()) + 1 + width_of(place) <= columns) {
        shown.step = place;
    }
}

}  // namespace frontpanel
