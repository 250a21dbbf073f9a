// The table that `--probe` prints: every parameter that lives at a driver, read once.
#ifndef FRONTPANEL_APP_PROBE_H
#define FRONTPANEL_APP_PROBE_H

#include <string>
#include <vector>

#include <frontpanel_drivers/device_cache.h>
#include "options.h"
#include "output_log.h"
#include "reports.h"

namespace frontpanel {

// A line for each parameter: its name, its driver, its value, the age of the value and the error.
std::string probe_table(const std::vector<Driven_value>& values);

// Reads the parameters of the menu and prints the table to standard output. The exit status: EXIT_DIFFERENCE when one
// has no value, or could not be read. Input_error when nothing lives at a driver, or the table cannot be written.
int probe(const Options& options, Output_log& log, Menu_pointer document = nullptr);

}  // namespace frontpanel

#endif
