// The parameter that value models never read back from the device.
#ifndef FRONTPANEL_DATA_SRC_MODEL_UNREAD_PARAMETER_H
#define FRONTPANEL_DATA_SRC_MODEL_UNREAD_PARAMETER_H

#include <cstdint>

// Refreshing a model of this parameter keeps the local value; a commit still writes it.
constexpr uint32_t UNREAD_PID = 65547;

#endif
