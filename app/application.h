// The panel application: puts menu, controller and display together.
#ifndef FRONTPANEL_APP_APPLICATION_H
#define FRONTPANEL_APP_APPLICATION_H

namespace frontpanel {

// Runs the application with the arguments of `main`. Returns an exit status of options.h.
int run(int argc, const char* const* argv);

}  // namespace frontpanel

#endif
