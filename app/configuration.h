// A file with options, for a panel that is started without a command line of its own.
#ifndef FRONTPANEL_APP_CONFIGURATION_H
#define FRONTPANEL_APP_CONFIGURATION_H

#include <string>

namespace CLI {
class App;
}

namespace frontpanel {

// Gives the options of `app`, whose command line is parsed, the values that they have in the file, a line each:
//
//     size = 16x2                  # the name of an option without "--"
//     keys = "Enter=select,F1=1"   # quoted, since it has a comma
//     still                        # an option without a value; "still = false" for its absence
//
// An option of the command line wins, also over those that it excludes. Input_error, with file and line, for anything
// else; then the options of the lines before are set.
void configure(CLI::App& app, const std::string& file);

}  // namespace frontpanel

#endif
