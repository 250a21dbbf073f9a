// What the application prints of a menu in place of showing it, and the check of a menu.
#ifndef FRONTPANEL_APP_REPORTS_H
#define FRONTPANEL_APP_REPORTS_H

#include <memory>
#include <optional>

#include "curl_home.h"
#include "loaded_panel.h"
#include "options.h"
#include "output_log.h"

namespace frontpanel {

// A menu that was read before, or null for one that is still to be read.
using Menu_pointer = std::unique_ptr<Menu_document>;

// Loads the menu of the options. Input_error, Input_errors and `shows` as those of `load_panel`.
Loaded_panel load(const Options& options, Output_log& log, Cards cards,
                  Menu_pointer document = nullptr, const Shows_character& shows = nullptr);

// What the transfers of live data need while cards run; reports what does not work of them.
std::optional<Curl_home> prepare_transfers(Simulated_device& device, Output_log& log);

// Whether the options ask for a report.
bool is_report(const Options& options);
// Prints it to standard output. The exit status; Input_error when that cannot be written.
int report(const Options& options, Menu_pointer document = nullptr);
// Checks the menu, with the characters of the display if one is named, and the script if one is named. The exit status; Input_error for what is wrong.
int check(const Options& options, Output_log& log, Menu_pointer document = nullptr);

// Input_error when printing to standard output has failed.
void check_written(bool failed);

}  // namespace frontpanel

#endif
