// An enumeration whose options come from a card that need not be trusted.
#ifndef FRONTPANEL_MENU_LIVE_ENTRY_H
#define FRONTPANEL_MENU_LIVE_ENTRY_H

#include <frontpanel_data/enum_entry.h>

#include <cstddef>

namespace frontpanel {

// Limits the files that a card can make the tools of a transfer write: its answer, the document that is unpacked from
// it, and the answer to a post. A transfer that exceeds the limit fails like any other.
//
// The settings of `curl` limit the time of a transfer.
class Live_entry : public Enum_entry {
public:
    // Of each file. A fetch makes two.
    static constexpr std::size_t LARGEST_FILE = std::size_t{1} * 1024 * 1024;

    using Enum_entry::Enum_entry;

    // Also counts the options, so that positions, count and texts belong to the list that was just fetched.
    int Refresh(Data_interface* pDataAccessInf, bool eval_binding) override;
    // Forgets the options of the former list.
    int updateControlOptionMap() override;
    int Commit(Data_interface* pDataAccessInf) override;
};

}  // namespace frontpanel

#endif
