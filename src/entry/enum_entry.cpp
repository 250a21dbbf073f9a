// Enumerated entries: construction, value, stepping, display and commit. See enum_controls.cpp for the visible
// options, and enum_live_data.cpp for options that come from a card.
#include <frontpanel_data/enum_entry.h>

#include <algorithm>
#include <climits>
#include <cstring>
#include <new>
#include <utility>

#include "../assertion.h"
#include "../diagnostics.h"
#include "../marquee.h"
#include "../step_counter.h"
#include "dependants.h"
#include "keys_by_position.h"

namespace {

constexpr int CURRENT_OPTION = -1;
constexpr int REFUSED = -1;
// Options among which searching is as fast as looking up.
constexpr std::size_t MOST_SEARCHED = 16;
constexpr char NO_TEXT[] = "-";

void deliver(void* out, unsigned int length, int value) {
    FRONTPANEL_ASSERT(out && length, "buffer&&length");
    std::memcpy(out, &value, std::min<std::size_t>(length, sizeof value));
}

int leading_int(const void* buffer, unsigned int length) {
    FRONTPANEL_ASSERT(buffer && length, "buffer&&length");
    int value = 0;
    std::memcpy(&value, buffer, std::min<std::size_t>(length, sizeof value));
    return value;
}

int step(int from, int by) {
    return static_cast<int>(std::clamp<int64_t>(int64_t{from} + by, INT_MIN, INT_MAX));
}

bool is_within(int value, int min, int max) {
    return min <= value && value <= max;
}

int show_no_text(char* buffer) {
    std::memcpy(buffer, NO_TEXT, sizeof NO_TEXT);
    return 1;
}

}  // namespace

uint32_t Enum_entry::dynamic_counter = 0;

Enum_entry::Enum_entry(const char* name, const char* description, unsigned int pid,
                       const Index_t* index, int min, int max, int default_value, char** enum_array,
                       unsigned int enum_size, Data_entry* parent, Data_access access, int visible,
                       bool active, int shortcut, Data_entry* next, Data_entry* previous,
                       Data_entry* child, char* wType, char* pType,
                       Live_Data_Processor* liveDataProcessor)
    : Data_entry(name, description, pid, index, visible, shortcut, next, previous, parent, child),
      m_value(enum_array),
      m_size(static_cast<int>(enum_size)),
      m_size_enum(static_cast<int>(enum_size)),
      m_size_visible(-1),
      m_model(pid, index, min, static_cast<int>(enum_size), default_value),
      m_active(active),
      m_min(min),
      m_max(max),
      m_min_enum(min),
      m_max_enum(max),
      max_map_size(0),
      m_scroll_offset(0),
      m_scroll_delay(0),
      m_webType(wType),
      m_panelType(pType),
      m_LiveDataProcessor(liveDataProcessor),
      m_keys_by_position() {
    FRONTPANEL_ASSERT(min >= 0, "min>=0");
    FRONTPANEL_ASSERT(static_cast<unsigned int>(max) <= enum_size, "(unsigned)max<=enum_size");
    FRONTPANEL_ASSERT(enum_array, "enum_array");
    FRONTPANEL_ASSERT(*enum_array, "*enum_array");
    m_text_count = static_cast<int>(enum_size);
    Enum_entry::updateControlOptionMap();
    Data_entry::Set_access_type(access);
}

// The texts are not freed: the application may still show them.
Enum_entry::~Enum_entry() = default;

std::string Enum_entry::getProperties(int flags) {
    if (control_options.empty()) {
        m_reported_lists_only = true;
    }
    std::string report = Data_entry::getProperties(flags) + "enum={ ";
    for (const auto& [key, position] : map_enum_to_options) {
        const char* const text = option_text(key);
        report += " " + std::to_string(key) + "(" + (text != nullptr ? text : "") + ") ";
        // A report adds an empty list for a key without one. Intended: readers of the lists find every key.
        const std::vector<std::string>& options = control_options[key];
        if (!options.empty()) {
            report += "options:";
        }
        for (const std::string& option : options) {
            report += option + " ";
        }
    }
    return report + " }";
}

Data_entry::Entry_type Enum_entry::Get_entry_type() const {
    return ENUM_LEAF;
}

RETURN_TYPE Enum_entry::Get_return_type_int_or_string() const {
    return INTEGER;
}

bool Enum_entry::Is_active() const {
    return m_active && m_model.Is_active();
}

int Enum_entry::Get_min() const {
    return m_min_enum;
}

int Enum_entry::Get_max() const {
    return m_max_enum;
}

unsigned int Enum_entry::Get_menu_level() {
    return getNodeLevel();
}

Live_Data_Processor* Enum_entry::GetLiveDataProcessor() {
    return m_LiveDataProcessor;
}

char* Enum_entry::option_text(int key) const {
    return key >= 0 && key < m_text_count ? m_value[key] : nullptr;
}

void Enum_entry::Update_value(char** enum_array, int size) {
    // The card's own list may be handed in again; it stays as long as it is.
    if (!m_owns_texts || enum_array != m_value) {
        free_owned_texts();
        m_value = enum_array;
        m_text_count = enum_array != nullptr ? size : 0;
    }
    m_size = size;
    m_max = size - 1;
    m_model.Set_max(size - 1);
}

int Enum_entry::valueToKey(const std::map<int, int>& map, int value) {
    // While the lines of a search are shown it searches.
    if (&map == &map_enum_to_options && map.size() > MOST_SEARCHED &&
        !(diagnostics::leaf_gate() && (debug & diagnostics::GENERAL) != 0)) {
        const int key = first_key_at(value);
        if (key != NO_KEY) {
            return key;
        }
    }
    std::size_t steps = 0;
    int found = NO_KEY;
    for (const auto& [key, position] : map) {
        ++steps;
        LEAF_LINE(GENERAL, FUNCTION_FIRST, "valueToKey", "it->second=[%d] value=[%d] name=[%s]\n",
                  position, value, Get_name());
        if (position == value) {
            LEAF_LINE(GENERAL, TAB, "valueToKey", "Returning it->second=[%d]=value\n", position);
            found = key;
            break;
        }
    }
    step_counter::positions_searched += steps;
    return found;
}

void Enum_entry::index_positions() {
    m_keys_by_position.reset();
    if (map_enum_to_options.size() <= MOST_SEARCHED) {
        return;
    }
    try {
        m_keys_by_position = std::make_unique<Keys_by_position>(map_enum_to_options);
    } catch (const std::bad_alloc&) {
        // Without memory for the index, positions are found by searching.
    }
}

// `NO_KEY` when a search is necessary. A class of the application may have written the map itself, so that a key has
// another position now.
int Enum_entry::first_key_at(int position) {
    const bool is_current =
        m_keys_by_position != nullptr && m_keys_by_position->map_size == map_enum_to_options.size();
    if (!is_current) {
        index_positions();
    }
    if (m_keys_by_position == nullptr || !m_keys_by_position->has(position)) {
        return NO_KEY;
    }
    const int key = m_keys_by_position->at(position);
    const auto found = map_enum_to_options.find(key);
    return found != map_enum_to_options.end() && found->second == position ? key : NO_KEY;
}

int Enum_entry::Get_key_enum(void* value, unsigned int length) {
    int key = 0;
    const int result = m_model.Get(&key, sizeof key);
    if (result != 0) {
        deliver(value, length, key);
        return result;
    }
    if (!is_within(key, m_min_enum, m_max_enum)) {
        LEAF_LINE(GENERAL, NONE, "Get_key_enum",
                  "enum too small or large. min[%d] get_returned[%d] max[%d]\n", m_min_enum, key,
                  m_max_enum);
        key = m_min_enum;
    }
    // A key that has no position yet gets position 0, here and in every lookup of this class. Intended: the
    // current option of an entry whose options are all hidden can thus be shown and left again.
    map_enum_to_options.try_emplace(key, 0);
    deliver(value, length, key);
    return 0;
}

int Enum_entry::Get_integer_enum() {
    int key = 0;
    Get_key_enum(&key, sizeof key);
    LEAF_LINE(GENERAL, FUNCTION_FIRST, "Get_integer_enum", "int=[%d]\n", key);
    return key;
}

int Enum_entry::Get_integer() {
    int key = 0;
    Get_key_enum(&key, sizeof key);
    LEAF_LINE(GENERAL, FUNCTION_FIRST, "Get_integer", "int=[%d]\n", key);
    return key;
}

int Enum_entry::Get_value(void* value, unsigned int length) {
    const int key = Get_integer_enum();
    int position = map_enum_to_options[key];
    if (!is_within(position, Get_min(), Get_max()) || position == -1) {
        position = Get_min();
        LEAF_LINE(GENERAL, FUNCTION_FIRST, "Get_value", "did not pass check, returning min=[%d]\n",
                  position);
    }
    LEAF_LINE(GENERAL, FUNCTION_FIRST, "Get_value", "key=[%d] value=[%d]\n", key, position);
    deliver(value, length, position);
    return 0;
}

int Enum_entry::Get_value(void* value, unsigned int length, int index) {
    if (!is_within(index, Get_min(), Get_max())) {
        LEAF_LINE(GENERAL, FUNCTION_FIRST, "Get_value",
                  "index[%d] is not in range [%d,%d]. Using min for request.\n", index, Get_min(),
                  Get_max());
        index = Get_min();
    }
    if (map_enum_to_options.empty()) {
        deliver(value, length, index);
        return 0;
    }
    const int key = valueToKey(map_enum_to_options, index);
    if (is_within(key, m_min_enum, m_max_enum)) {
        deliver(value, length, key);
        return 0;
    }
    const int safe_key = valueToKey(map_enum_to_options, Get_min());
    LEAF_LINE(GENERAL, FUNCTION_FIRST, "Get_value",
              "Error. No match for value [%d] in map. Returning min=[%d]->[%d]\n", index, Get_min(),
              safe_key);
    if (is_option(safe_key)) {
        m_model.Set(&safe_key, sizeof safe_key);
    }
    return 1;
}

// Whether a key may be selected in place of one that cannot stay. What names no option or is not allowed would
// reach the device with the next commit.
bool Enum_entry::is_option(int key) const {
    return is_within(key, 0, m_size_enum - 1) && is_within(key, m_min_enum, m_max_enum);
}

// Without a map positions are keys, and looking one up would begin a map.
int Enum_entry::current_selection() {
    int selection = 0;
    if (map_enum_to_options.empty()) {
        m_model.Get(&selection, sizeof selection);
    } else {
        Get_value(&selection, sizeof selection);
    }
    return selection;
}

int Enum_entry::Set_value(const void* value, unsigned int length) {
    const int position = leading_int(value, length);
    const int selection = current_selection();
    LEAF_LINE(GENERAL, NONE, "Set_value", "enum set Set_value [%i] current_selection=[%d]\n",
              position, selection);
    if (is_locked_live_data()) {
        LEAF_LINE(GENERAL, NONE, "Set_value", "Read Only varId[]\n");
        return 1;
    }
    if (Data_entry::Set_value(value, length) != 0) {
        return 1;
    }
    if (map_enum_to_options.empty()) {
        const int result = m_model.Set(&position, sizeof position);
        LEAF_LINE(GENERAL, NONE, "Set_value", "enum set rval %i\n", result);
        return result;
    }
    // A negative position is refused before it is looked up: it would name a hidden option.
    const int key = position < 0 ? -1 : valueToKey(map_enum_to_options, position);
    if (!is_within(key, m_min_enum, m_max_enum)) {
        LEAF_LINE(GENERAL, NONE, "Set_value", "enum too small or large. min[%d] set[%d] max[%d]\n",
                  m_min_enum, key, m_max_enum);
        return 1;
    }
    return m_model.Set(&key, sizeof key);
}

int Enum_entry::Inc_value(int value, int /*position*/) {
    const int position = map_enum_to_options[Get_integer()];
    const int new_position = step(position, value);
    const int new_key = new_position < 0 ? -1 : valueToKey(map_enum_to_options, new_position);
    if (new_key < 0) {
        LEAF_LINE(GENERAL, FUNCTION_FIRST, "Inc_value",
                  "Current enum position + supplied value[%d] results in overrun in [%s].\n", value,
                  Get_name());
        return REFUSED;
    }
    if (!is_within(new_key, m_min_enum, m_max_enum)) {
        LEAF_LINE(GENERAL, FUNCTION_FIRST, "Inc_value",
                  "new enum value [%d] for [%s] is not in enum control range [%d,%d]\n", new_key,
                  Get_name(), m_min_enum, m_max_enum);
        return REFUSED;
    }
    LEAF_LINE(GENERAL, FUNCTION_FIRST, "Inc_value",
              "Incremented enum one visible unit. Enum [%s] has value [%d], + [%d] = "
              "newkeyindex[%d]. This will be the new value.\n",
              Get_name(), position, value, new_key);
    return m_model.Set(&new_key, sizeof new_key);
}

int Enum_entry::minMaxSize(int* min, int* max, int* size) {
    if (map_enum_to_options.empty()) {
        *min = m_min_enum;
        *max = m_max_enum;
        *size = m_size_enum;
        LEAF_LINE(GENERAL, FUNCTION_FIRST, "minMaxSize",
                  "Size of option map is 0. min[%d] max[%d] size[%d]\n", *min, *max, *size);
        return 0;
    }
    *min = INT_MAX;
    *max = 0;
    *size = 0;
    for (const auto& [key, position] : map_enum_to_options) {
        *max = std::max(*max, position);
        if (position != -1) {
            *min = std::min(*min, position);
            ++*size;
        }
    }
    return 0;
}

int Enum_entry::Get_display_string(char* buffer, unsigned int length) {
    return Get_display_string(buffer, length, CURRENT_OPTION);
}

int Enum_entry::Get_display_string(char* buffer, unsigned int length, int index) {
    FRONTPANEL_ASSERT(buffer, "buffer");
    if (length <= 1) {
        LEAF_LINE(GENERAL, NONE, "Get_display_string",
                  "Enum_entry::Get_display_string, Warning. Length is <=1");
        return 1;
    }
    int key = 0;
    const int result = index == CURRENT_OPTION ? Get_key_enum(&key, sizeof key)
                                               : Get_value(&key, sizeof key, index);
    if (result != 0) {
        LEAF_LINE(GENERAL, NONE, "Get_display_string",
                  "Enum_entry::Get_display_string, Get_value error");
        return show_no_text(buffer);
    }
    // The size counts visible options, not keys: with hidden options before it, a visible option at the end
    // of the list has no text here. Intended: panels show the mark for an option that is out of reach.
    const char* const text = key < m_size ? option_text(key) : nullptr;
    if (text == nullptr) {
        LEAF_LINE(GENERAL, NONE, "Get_display_string", "Enum_entry::Get_display_string, error");
        return show_no_text(buffer);
    }
    const std::size_t text_length = std::strlen(text);
    if (text_length < length) {
        std::memcpy(buffer, text, text_length + 1);
    } else {
        marquee::show(buffer, length, text, text_length, m_scroll_offset, m_scroll_delay);
    }
    return 0;
}

int Enum_entry::Refresh(Data_interface* pDataAccessInf, bool eval_binding) {
    LEAF_LINE(GENERAL, FUNCTION_FIRST, "Refresh", "Enum Entry Refresh name=[%s]\n", Get_name());
    const int result = refresh_entry(pDataAccessInf, eval_binding);
    if (result != 0) {
        LEAF_LINE(GENERAL, NONE, "Refresh", "Error with enum[%s] refreshing.\n", Get_name());
        return result;
    }
    leave_hidden_option(pDataAccessInf);
    return 0;
}

int Enum_entry::refresh_entry(Data_interface* pDataAccessInf, bool eval_binding) {
    if (is_live_data()) {
        refresh_live_data();
    } else if (const int result = m_model.Refresh(pDataAccessInf)) {
        return result;
    }
    return Data_entry::Refresh(pDataAccessInf, eval_binding);
}

void Enum_entry::leave_hidden_option(Data_interface* pDataAccessInf) {
    int key = 0;
    m_model.Get(&key, sizeof key);
    LEAF_LINE(GENERAL, FUNCTION_FIRST, "Refresh", "Value of the key =[%d] name=[%s]\n", key,
              Get_name());
    if (position_of_stored(key) != -1) {
        return;
    }
    const int safe_key = valueToKey(map_enum_to_options, Get_min());
    if (!is_option(safe_key)) {
        return;  // no allowed option is visible there: there is no key that the device could be given
    }
    LEAF_LINE(GENERAL, FUNCTION_FIRST, "Refresh",
              "Will commit a new and safe value for enum. new enum key[%d] \n", safe_key);
    m_model.Set(&safe_key, sizeof safe_key);
    Commit(pDataAccessInf);
}

// The key is taken as the device stores it, allowed or not, and gets position 0 if it has none. Intended: a
// device that stores a key of its own keeps it until the user selects another. A negative number is no key
// and gets no place in the map: it would come before the first option and make that impossible to select.
int Enum_entry::position_of_stored(int key) {
    return key < 0 ? 0 : map_enum_to_options.try_emplace(key, 0).first->second;
}

int Enum_entry::Commit(Data_interface* pDataAccessInf) {
    LEAF_LINE(GENERAL, FUNCTION_FIRST, "Commit", "Calling m_model commit...\n");
    const bool posts = is_live_data() && m_LiveDataProcessor != nullptr;
    const int result = posts ? commit_live_data() : m_model.Commit(pDataAccessInf);
    dependants::refresh(
        *this, binding, pDataAccessInf,
        {"Commit", __FILE_NAME__,
         diagnostics::place<diagnostics::Prefix::FUNCTION_FIRST, diagnostics::GENERAL>(__LINE__),
         false, false, true});
    return result;
}
