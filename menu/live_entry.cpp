#include <frontpanel_menu/live_entry.h>

#include <frontpanel_base/file_size_limit.h>

namespace frontpanel {

int Live_entry::Refresh(Data_interface* pDataAccessInf, bool eval_binding) {
    const File_size_limit limit(LARGEST_FILE);
    return Enum_entry::Refresh(pDataAccessInf, eval_binding);
}

int Live_entry::Commit(Data_interface* pDataAccessInf) {
    const File_size_limit limit(LARGEST_FILE);
    return Enum_entry::Commit(pDataAccessInf);
}

}  // namespace frontpanel
