// What the write rules of a menu have done, for an application that keeps it beside the device's values: a rule that
// has written does so again only when what it writes changes, also after a restart.
#ifndef FRONTPANEL_BINDING_DONE_WRITES_H
#define FRONTPANEL_BINDING_DONE_WRITES_H

#include <string>
#include <vector>

#include <frontpanel_binding/rule_verdict.h>

namespace frontpanel {

struct Done_writes {
    struct Write {
        Device_variable target;
        return_s value;
    };

    // Names the write rules of an entry by what they say and by the entry's parameter, at most 64 printable characters.
    // Rules that say something else go by another name.
    std::string rules;
    std::vector<Write> writes;  // the last ones, in the order of the rules
};

}  // namespace frontpanel

#endif
