#include <algorithm>
#include <cstring>

#include <frontpanel_data/data_model.h>

#include "../assertion.h"
#include "../diagnostics.h"
#include "unread_parameter.h"

namespace {

// The int that the first bytes of a buffer hold; missing bytes are zero.
int leading_int(const void* buffer, unsigned int length) {
    int value = 0;
    std::memcpy(&value, buffer, std::min<std::size_t>(length, sizeof value));
    return value;
}

}  // namespace

Integer_model::Integer_model(unsigned int pid, const Index_t* index, int min, int max,
                             int default_value)
    : Data_model(pid, index),
      m_value(default_value),
      m_min(min),
      m_max(max),
      m_default(default_value) {
    FRONTPANEL_ASSERT(min <= default_value, "min<=default_value");
    FRONTPANEL_ASSERT(default_value <= max, "default_value<=max");
}

Integer_model::~Integer_model() = default;

int Integer_model::Get(void* buffer, unsigned int length) {
    FRONTPANEL_ASSERT(buffer && length, "buffer&&length");
    std::memcpy(buffer, &m_value, std::min<std::size_t>(length, sizeof m_value));
    LEAF_LINE(MODEL_READ, NONE, "Get", "Integer_model::Get: value[%d], length[%d] m_value[%d]\n",
              leading_int(buffer, length), static_cast<int>(length), m_value);
    return OK;
}

int Integer_model::Set(const void* buffer, unsigned int length) {
    FRONTPANEL_ASSERT(buffer && length, "buffer&&length");
    LEAF_LINE(WRITE, NONE, "Set", "Integer_model::Set: value[%d], length[%d]\n",
              leading_int(buffer, length), static_cast<int>(length));
    // The length is the caller's: it is not limited to the value's four bytes on purpose.
    std::memcpy(&m_value, buffer, length);
    return OK;
}

bool Integer_model::Is_active() const {
    return true;
}

int Integer_model::Inc_value(int value, int position) {
    LEAF_LINE(GENERAL, NONE, "Inc_value", "Integer_model::Inc_value: value[%d], position[%d]\n",
              value, position);
    const int64_t stepped = static_cast<int64_t>(m_value) + value;
    if (stepped > m_max) {
        m_value = m_max;
    } else if (stepped < m_min) {
        m_value = m_min;
    } else {
        m_value = static_cast<int32_t>(stepped);
    }
    return OK;
}

int Integer_model::Commit(Data_interface* pDataAccessInf) {
    LEAF_LINE(COMMIT, NONE, "Commit", "Integer_model::Commit:m_pid=%d, m_varidx=%d, m_value=%d\n",
              static_cast<int>(m_pid), static_cast<int>(m_varidx), m_value);
    return pDataAccessInf->Set(m_pid, m_varidx, &m_value, sizeof m_value) != 0 ? ERROR : OK;
}

int Integer_model::Refresh(Data_interface* pDataAccessInf) {
    LEAF_LINE(GENERAL, NONE, "Refresh",
              "Integer_model::Refresh before:m_pid=%d, m_varidx=%d, m_value=%d m_max=[%d] "
              "m_min=[%d]\n",
              static_cast<int>(m_pid), static_cast<int>(m_varidx), m_value, m_max, m_min);
    int result = OK;
    if (m_pid != UNREAD_PID &&
        pDataAccessInf->Get(m_pid, m_varidx, &m_value, sizeof m_value) != 0) {
        result = ERROR;
    }
    LEAF_LINE(GENERAL, NONE, "Refresh",
              "Integer_model::Refresh after:m_pid=%d, m_varidx=%d, m_value=%d m_max=[%d] "
              "m_min=[%d]\n",
              static_cast<int>(m_pid), static_cast<int>(m_varidx), m_value, m_max, m_min);
    return result;
}
