// What write rules have done, in the engine's form and as the application keeps it.
#ifndef FRONTPANEL_BINDING_ENGINE_DONE_LIST_H
#define FRONTPANEL_BINDING_ENGINE_DONE_LIST_H

#include <vector>

#include <frontpanel_binding/done_writes.h>

#include "engine/cascade.h"

namespace frontpanel::binding_engine {

return_s value_of(const GetSetS& request);

// The writes of every engine with write rules. Equal rules are listed once.
std::vector<Done_writes> done_writes(const Cascade& cascade);
// Rules that the list does not have count as not having written.
void set_done_writes(const Cascade& cascade, const std::vector<Done_writes>& done);

}  // namespace frontpanel::binding_engine

#endif
