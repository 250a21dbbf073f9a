// Everything a menu is built from: parameter addressing, the value models and every class of entry.
#ifndef FRONTPANEL_DATA_DATA_ENTRY_H
#define FRONTPANEL_DATA_DATA_ENTRY_H

#include <frontpanel_data/data_interface.h>
#include <frontpanel_data/data_model.h>
#include <frontpanel_data/entry.h>
#include <frontpanel_data/enum_entry.h>
#include <frontpanel_data/link_entry.h>
#include <frontpanel_data/range_entry.h>
#include <frontpanel_data/slot_enum_entry.h>
#include <frontpanel_data/string_entry.h>

#endif
