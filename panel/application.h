// The panel application: puts menu, controller and display together.
#ifndef FRONTPANEL_PANEL_APPLICATION_H
#define FRONTPANEL_PANEL_APPLICATION_H

namespace panel {

// Runs the application with the arguments of `main`. The exit status, as options.h tells.
int run(int argc, const char* const* argv);

}  // namespace panel

#endif
