#include <algorithm>
#include <cstring>

#include <frontpanel_data/data_model.h>

#include "../assertion.h"
#include "../diagnostics.h"
#include "../marquee.h"
#include "unread_parameter.h"

String_model::String_model(unsigned int pid, const Index_t* index, unsigned int max_length)
    : Data_model(pid, index), m_value(), m_max_length(max_length) {
    FRONTPANEL_ASSERT(max_length <= static_cast<unsigned int>(MAX_STRING_LENGTH),
                      "max_length<=MAX_STRING_LENGTH");
}

String_model::~String_model() = default;

uint32_t String_model::Get_current_length() const {
    return static_cast<uint32_t>(std::strlen(m_value));
}

int String_model::Get(void* buffer, unsigned int length) {
    FRONTPANEL_ASSERT(buffer && length, "buffer&&length");
    std::memcpy(buffer, m_value, std::min<std::size_t>(length, sizeof m_value));
    return OK;
}

int String_model::Get(void* buffer, unsigned int length, unsigned int offset) {
    FRONTPANEL_ASSERT(buffer && length, "buffer&&length");
    const uint32_t text_length = Get_current_length();
    if (length > text_length) {
        return Get(buffer, length);
    }
    marquee::copy_window(static_cast<char*>(buffer), length, m_value, text_length,
                         offset > text_length ? 0 : offset);
    return OK;
}

int String_model::Set(const void* buffer, unsigned int length) {
    FRONTPANEL_ASSERT(buffer, "buffer");
    const uint32_t kept = std::min<uint32_t>(length, m_max_length);
    std::memmove(m_value, buffer, kept);
    m_value[kept] = '\0';
    LEAF_LINE(GENERAL, NONE, "Set", "String_model::Set: value[%s], length[%d]\n", m_value,
              static_cast<int>(length));
    return OK;
}

bool String_model::Is_active() const {
    return true;
}

int String_model::Inc_value(int value, int position) {
    LEAF_LINE(GENERAL, NONE, "Inc_value", "String_model::Inc_value: value[%d], position[%d]\n",
              value, position);
    Init();
    const int64_t length = Get_current_length();
    const int64_t maximum = m_max_length;
    const int64_t index = length - position - 1;
    if (index >= maximum || (index < 0 && maximum <= int64_t{position} + 1)) {
        return INVALID;
    }
    if (position >= length) {
        const std::size_t start = static_cast<std::size_t>(position + 1 - length);
        std::memmove(m_value + start, m_value, static_cast<std::size_t>(length) + 1);
        std::memset(m_value, ' ', start);
        return OK;
    }
    if (position < 0) {
        LEAF_LINE(GENERAL, NONE, "Inc_value", "position[%d], length[%d]\n", position,
                  static_cast<int>(length));
        std::memset(m_value + length, ' ', static_cast<std::size_t>(index + 1 - length));
        m_value[index + 1] = '\0';
        return OK;
    }
    const unsigned int stepped =
        (static_cast<unsigned char>(m_value[index]) + static_cast<unsigned int>(value)) & 0xFF;
    if (stepped < MIN_CHARACTER || stepped > MAX_CHARACTER) {
        return INVALID;
    }
    m_value[index] = static_cast<char>(stepped);
    return OK;
}

int String_model::Commit(Data_interface* pDataAccessInf) {
    LEAF_LINE(GENERAL, NONE, "Commit",
              "String_model::Commit: m_pid[%d], m_varidx[%d], m_value[%s]\n",
              static_cast<int>(m_pid), static_cast<int>(m_varidx), m_value);
    return pDataAccessInf->Set(m_pid, m_varidx, m_value, Get_current_length()) != 0 ? ERROR : OK;
}

int String_model::Refresh(Data_interface* pDataAccessInf) {
    LEAF_LINE(REFRESH, FUNCTION_FIRST, "Refresh", "\n");
    LEAF_LINE(REFRESH, NONE, "Refresh",
              "String_model::Refresh before:m_pid=%d %d, m_varidx=%d, m_value=%s \n",
              static_cast<int>(m_pid), static_cast<int>(UNREAD_PID), static_cast<int>(m_varidx),
              m_value);
    int result = OK;
    if (m_pid != UNREAD_PID) {
        LEAF_LINE(REFRESH, NONE, "Refresh", "String_model::Refresh pDataAccessInf[%p] \n",
                  static_cast<void*>(pDataAccessInf));
        if (pDataAccessInf->Get(m_pid, m_varidx, m_value, sizeof m_value) != 0) {
            result = ERROR;
        }
        m_value[sizeof m_value - 1] = '\0';  // whatever the device wrote
    }
    LEAF_LINE(REFRESH, NONE, "Refresh",
              "String_model::Refresh after:m_pid=%d, m_varidx=%d, m_value=%s \n",
              static_cast<int>(m_pid), static_cast<int>(m_varidx), m_value);
    return result;
}
