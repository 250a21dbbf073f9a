// Which version of a virtual operation an entry has.
//
// Walks through a tree keep a stack of their own, since a menu may be deeper than the thread's stack. They enter an
// entry by themselves where it has the library's version of the operation, and call the version of any other class.
#ifndef FRONTPANEL_DATA_SRC_ENTRY_OVERRIDING_H
#define FRONTPANEL_DATA_SRC_ENTRY_OVERRIDING_H

#include <frontpanel_data/entry.h>

namespace overriding {

enum class Version {
    BASE,  // of Data_entry
    LINK,  // of Link_entry
    OTHER  // of a class of the application
};

Version of_print(const Data_entry& entry);
Version of_is_visible(const Data_entry& entry);  // the operation with arguments

}  // namespace overriding

#endif
