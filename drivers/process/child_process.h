// An adapter that the panel starts in a process group, and ends together with the processes that the adapter started.
//
// The group also ends when the panel is killed, even by SIGKILL: a guard process in the group ensures that.
#ifndef FRONTPANEL_DRIVER_PROCESS_CHILD_PROCESS_H
#define FRONTPANEL_DRIVER_PROCESS_CHILD_PROCESS_H

#include <sys/types.h>

#include <chrono>
#include <string>
#include <vector>

#include <frontpanel_base/descriptor.h>

namespace frontpanel {

class Child_process {
public:
    Child_process() = default;
    // Ends one that runs, as `end` does.
    ~Child_process();
    Child_process(const Child_process&) = delete;
    Child_process& operator=(const Child_process&) = delete;

    static constexpr std::chrono::milliseconds PATIENCE{500};  // between SIGTERM and SIGKILL

    // Starts `program` with `arguments`, of which the first is its name, in `folder` unless that is empty. It inherits
    // the environment and three pipes, and no other descriptor; no signal is blocked, ignored or caught. Why it could
    // not be started; empty when it runs. Requires: none runs.
    std::string start(const std::string& program, const std::vector<std::string>& arguments,
                      const std::string& folder);
    bool is_running() const { return m_process > 0; }
    pid_t process() const { return m_process; }

    // The panel's ends of its standard streams. None of them ever waits.
    Descriptor& input() { return m_input; }
    Descriptor& output() { return m_output; }
    Descriptor& errors() { return m_errors; }

    // Closes its input and output, and waits until it has ended: `by_itself` before SIGTERM, and PATIENCE before SIGKILL.
    // What is left of its process group is killed. How it ended: "it ended with status 1". Its errors stay open, for the
    // last words. Does nothing, and returns nothing, when none runs.
    std::string end(std::chrono::milliseconds by_itself = std::chrono::milliseconds(0));

private:
    bool has_ended(std::chrono::milliseconds most) const;
    int let_go(Descriptor& go, const Descriptor& report);
    int start_guard();
    void end_guard();

    pid_t m_process = -1;
    pid_t m_guard = -1;  // ends the group if the panel is killed
    Descriptor m_life;   // closed when the panel ends, which the guard notices at its other end
    Descriptor m_input;
    Descriptor m_output;
    Descriptor m_errors;
};

}  // namespace frontpanel

#endif
