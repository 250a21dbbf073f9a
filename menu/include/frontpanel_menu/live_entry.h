// An enumeration whose options come from a card that nobody needs to trust.
#ifndef FRONTPANEL_MENU_LIVE_ENTRY_H
#define FRONTPANEL_MENU_LIVE_ENTRY_H

#include <frontpanel_data/enum_entry.h>

#include <cstddef>

namespace frontpanel {

// Bounds what its card can make the tools of a transfer write: the answer as it arrives, the document that is unpacked
// from it, and the answer to a post. A transfer that exceeds the limit fails as any other.
//
// How long a transfer takes is left to the settings of `curl`.
class Live_entry : public Enum_entry {
public:
    // Of each file. A fetch makes two.
    static constexpr std::size_t LARGEST_FILE = std::size_t{1} * 1024 * 1024;

    using Enum_entry::Enum_entry;

    // Counts the options too, so that positions, count and texts are those of the list that was just fetched.
    int Refresh(Data_interface* pDataAccessInf, bool eval_binding) override;
    // Forgets the options of the list before.
    int updateControlOptionMap() override;
    int Commit(Data_interface* pDataAccessInf) override;
};

}  // namespace frontpanel

#endif
