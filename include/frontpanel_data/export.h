// Marks what the shared library exports; everything else is hidden.
#ifndef FRONTPANEL_DATA_EXPORT_H
#define FRONTPANEL_DATA_EXPORT_H

#define FRONTPANEL_DATA_EXPORT __attribute__((visibility("default")))

#endif
