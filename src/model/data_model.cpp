#include <frontpanel_data/data_model.h>

#include "../assertion.h"
#include "../diagnostics.h"

Data_model::Data_model(unsigned int pid, const Index_t* index)
    : m_pid(pid), m_index(index), m_varidx(0), m_init(false) {
    FRONTPANEL_ASSERT(index != nullptr, "index");
    if (Index_convert(index, m_varidx) != OK) {
        LEAF_LINE(GENERAL, NONE, "Data_model", "pid[%d], index[%d], m_varidx[%d]\n",
                  static_cast<int>(m_pid), static_cast<int>(index->m_index_num),
                  static_cast<int>(m_varidx));
    }
}

Data_model::~Data_model() = default;

int Data_model::Commit() {
    return OK;
}

int Data_model::Refresh() {
    return OK;
}

void Data_model::Init() {
    if (!m_init) {
        // Always the operation without an interface: the models hide it with theirs instead of overriding
        // it, so that initialising never reads the device.
        Refresh();
        m_init = true;
    }
}

int Data_model::Index_convert(const Index_t* index, unsigned int& varidx) {
    if (index == nullptr || index->m_index_num > S_CURRENT_SUPPORT_DIMENTIONS) {
        return INVALID;
    }
    switch (index->m_index_num) {
        case 0:
            varidx = 0;
            break;
        case 1:
            varidx = index->m_index[0];
            break;
        default:
            // Neither level is masked: the device expects a large first level to overlap the second.
            varidx = (static_cast<unsigned int>(index->m_index[1]) << 8) | index->m_index[0];
            break;
    }
    return OK;
}
