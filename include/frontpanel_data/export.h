// Marks what the shared library exports; everything else is hidden. LOCAL hides a private operation of an exported
// class.
#ifndef FRONTPANEL_DATA_EXPORT_H
#define FRONTPANEL_DATA_EXPORT_H

#define FRONTPANEL_DATA_EXPORT __attribute__((visibility("default")))
#define FRONTPANEL_DATA_LOCAL __attribute__((visibility("hidden")))

#endif
