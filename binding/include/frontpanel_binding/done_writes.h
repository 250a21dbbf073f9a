// The last writes of a menu's write rules, for an application that keeps them beside the device's values: a rule that
// has written does so again only when its value changes, also after a restart.
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

    // Identifies the write rules of an entry by their text and the entry's parameter, at most 64 printable characters.
    // Rules with another text have another name.
    std::string rules;
    std::vector<Write> writes;  // the last ones, in the order of the rules
};

}  // namespace frontpanel

#endif
