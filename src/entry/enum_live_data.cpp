// Enumerated entries whose options a slot card builds at run time.
#include <frontpanel_data/enum_entry.h>
#include <frontpanel_data/live_data_processor.h>

#include <cstdio>
#include <cstring>

#include "../diagnostics.h"

namespace {

// The parameters that are live data, a fixed rule of the device.
constexpr unsigned int FIRST_LIVE_PID = 9000;
constexpr unsigned int LAST_LIVE_PID = 9100;
// The format in which the card is asked for its data.
constexpr char DATA_FORMAT = 's';
// A fetch takes seconds, so the refreshes of all entries share one. This many pass between two.
constexpr uint32_t REFRESHES_BETWEEN = 10;

constexpr const char* WEB_TYPES[] = {"json-dynamic-combobox", "jsontree"};
constexpr const char* PANEL_TYPES[] = {"list"};

template <std::size_t COUNT>
int place_of(const char* name, const char* const (&names)[COUNT]) {
    for (std::size_t place = 0; name != nullptr && place < COUNT; ++place) {
        if (std::strcmp(name, names[place]) == 0) {
            return static_cast<int>(place);
        }
    }
    return -1;
}

// Counts one refresh; whether it is the one that fetches.
bool is_due(uint32_t& counter) {
    if (counter >= REFRESHES_BETWEEN) {
        counter = 0;
        return false;
    }
    ++counter;
    return counter == 1;
}

}  // namespace

int Enum_entry::getWebTypeAsInt() const {
    return place_of(m_webType, WEB_TYPES);
}

int Enum_entry::getPanelTypeAsInt() const {
    return place_of(m_panelType, PANEL_TYPES);
}

bool Enum_entry::is_live_data() const {
    return FIRST_LIVE_PID <= m_pid && m_pid <= LAST_LIVE_PID;
}

// A fetch makes a read-only entry writable, so that the panel lets the user walk through its options. What
// was read-only stays so on the card.
bool Enum_entry::is_locked_live_data() const {
    return is_live_data() && Get_flag_access_type_chg() && Get_orig_access_type() == READ_ONLY;
}

void Enum_entry::refresh_live_data() {
    const int web_type = getWebTypeAsInt();
    const int panel_type = getPanelTypeAsInt();
    LEAF_LINE(GENERAL, FUNCTION_FIRST, "Refresh", "varId[%d] name[%s] webType[%d] panelType[%d]\n",
              static_cast<int>(m_pid), Get_name(), web_type, panel_type);
    if (m_LiveDataProcessor == nullptr || web_type == -1 || panel_type == -1) {
        LEAF_LINE(GENERAL, FUNCTION_FIRST, "Refresh",
                  "LiveDataProcess is not present for varID[%d]\n", static_cast<int>(m_pid));
        return;
    }
    if (is_due(dynamic_counter)) {
        fetch_live_data(web_type, panel_type);
    }
}

void Enum_entry::fetch_live_data(int web_type, int panel_type) {
    char** texts = nullptr;
    uint32_t selection = 0;
    uint32_t size = 0;
    const int result = m_LiveDataProcessor->getData(static_cast<int>(m_pid), DATA_FORMAT, web_type,
                                                    panel_type, &texts, &selection, &size);
    if (result == 0 && texts != nullptr && size != 0) {
        adopt_live_data(texts, static_cast<int>(size), static_cast<int>(selection));
        return;
    }
    LEAF_LINE(GENERAL, FUNCTION_FIRST, "Refresh",
              "live data received error, ret[%d] newSize[%d] array[%p]\n", result,
              static_cast<int>(size), static_cast<void*>(texts));
}

void Enum_entry::adopt_live_data(char** texts, int size, int selection) {
    free_owned_texts();
    LEAF_LINE(GENERAL, FUNCTION_FIRST, "Refresh", "pid[%d], newEnumSize=[%d] \n",
              static_cast<int>(m_pid), size);
    m_min_enum = m_min = 0;
    m_max_enum = m_max = size - 1;
    m_size_enum = m_size = size;
    m_model.Set_min(0);
    m_model.Set_max(size - 1);
    m_model.Set(&selection, sizeof selection);
    m_value = texts;
    m_text_count = size;
    m_owns_texts = true;
    if (Get_access_type() == READ_ONLY) {
        Set_flag_access_type_chg(true);
        Set_access_type(READ_WRITE);
    }
    updateControlOptionMap();
}

void Enum_entry::free_owned_texts() {
    if (!m_owns_texts) {
        return;
    }
    for (int key = 0; key < m_text_count; ++key) {
        delete[] m_value[key];
    }
    delete[] m_value;
    m_value = nullptr;
    m_text_count = 0;
    m_owns_texts = false;
}

int Enum_entry::commit_live_data() {
    if (is_locked_live_data()) {
        return 0;
    }
    const int pid = static_cast<int>(m_pid);
    int selected = 0;
    char file_name[32];
    char selected_text[16];
    int result = m_model.Get(&selected, sizeof selected);
    std::snprintf(file_name, sizeof file_name, "/tmp/%d-post", pid);
    std::snprintf(selected_text, sizeof selected_text, "%d", selected);
    LEAF_LINE(GENERAL, FUNCTION_FIRST, "Commit", "ret[%d], varId[%d], selected[%d] filename[%s]\n",
              result, pid, selected, file_name);
    if (result == 0) {
        result = m_LiveDataProcessor->createLDCommitFile(pid, file_name, selected_text);
    }
    if (result == 0) {
        // The result of the post is not the result of the commit: the processor reports it itself.
        m_LiveDataProcessor->Commit(pid, DATA_FORMAT, file_name);
        return 0;
    }
    LEAF_LINE(GENERAL, FUNCTION_FIRST, "Commit",
              "Live Data Commit file create failed ret[%d], varId[%d], selected[%d] filename[%s] "
              "\n",
              result, pid, selected, file_name);
    SYSTEM_LOG("Commit", __FILE_NAME__,
               "Live Data Commit file create failed ret[%d], varId[%d], selected[%d] filename[%s] "
               "\n",
               result, pid, selected, file_name);
    return result;
}
