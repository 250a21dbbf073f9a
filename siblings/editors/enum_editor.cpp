#include <frontpanel_editors/enum_editor.h>

#include <algorithm>
#include <array>
#include <string>

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
    int position = 0;
    edited().Get_value(&position, sizeof position);
    const Positions positions = choices();
    m_proposed =
        positions.none() ? position : std::clamp(position, positions.first, positions.last);
    take_text();
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

void Enum_editor::step(Editor_key key) {
    if (key == Editor_key::UP) {
        propose(m_proposed + 1);
    } else if (key == Editor_key::DOWN) {
        propose(m_proposed - 1);
    }
}

void Enum_editor::propose(int position) {
    const Positions positions = choices();
    if (position < positions.first || position > positions.last) {
        return;
    }
    m_proposed = position;
    m_selected = position;
    read_slot_lines();
    take_text();
}

void Enum_editor::read_slot_lines() {
    auto* const slots = dynamic_cast<Slot_enum_entry*>(entry());
    Data_interface* const device = VarIdDataInfStore::m_pDataAccessInf;
    if (slots != nullptr && device != nullptr && m_use_line_info) {
        slots->Refresh(device, false, m_selected, m_selected_line, true);
    }
}

// A line longer than any text keeps the entry from scrolling it: what the list shows goes on undisturbed.
void Enum_editor::take_text() {
    std::array<char, MAX_STRING_LENGTH + 2> line = {};
    edited().Get_display_string(line.data(), line.size() - 1, m_proposed);
    m_text.set(line.data());
}

bool Enum_editor::accept() {
    return !choices().none() && edited().Set_value(&m_proposed, sizeof m_proposed) == 0;
}

void Enum_editor::draw(int columns, Editor_view& shown) {
    shown.text = m_text.show(columns);
    const Positions positions = choices();
    if (positions.none()) {
        return;
    }
    const std::string place = std::to_string(m_proposed - positions.first + 1) + "/" +
                              std::to_string(positions.last - positions.first + 1);
    const std::size_t title = std::string(edited().Get_name()).size();
    if (title + 1 + place.size() <= static_cast<std::size_t>(columns)) {
        shown.step = place;
    }
}
