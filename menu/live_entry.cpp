#include <frontpanel_menu/live_entry.h>

#include <frontpanel_base/file_size_limit.h>

namespace frontpanel {

int Live_entry::Refresh(Data_interface* pDataAccessInf, bool eval_binding) {
    const File_size_limit limit(LARGEST_FILE);
    const int result = Enum_entry::Refresh(pDataAccessInf, eval_binding);
    updateControlOptionMap();
    return result;
}

// Keys that stayed would count as options of a shorter list, and a longer one would keep the count of those before.
int Live_entry::updateControlOptionMap() {
    map_enum_to_options.clear();
    return Enum_entry::updateControlOptionMap();
}

int Live_entry::Commit(Data_interface* pDataAccessInf) {
    const File_size_limit limit(LARGEST_FILE);
    return Enum_entry::Commit(pDataAccessInf);
}

}  // namespace frontpanel
