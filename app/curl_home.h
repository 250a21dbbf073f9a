// Settings of the panel's own for the `curl` commands that fetch and post live data: they end within two seconds, take
// no answer that announces more than a megabyte and ask no proxy, so that a card that hangs does not stop the panel.
//
// An answer may announce no length, and is packed: how much of it is written to files is bounded by `Live_entry`.
#ifndef FRONTPANEL_APP_CURL_HOME_H
#define FRONTPANEL_APP_CURL_HOME_H

#include <optional>
#include <string>

#include <frontpanel_base/signal_cleanup.h>

namespace frontpanel {

// One at a time.
class Curl_home {
public:
    // Writes the settings to a new folder among the temporary files and points CURL_HOME to it. Input_error
    // when that fails.
    Curl_home();
    // Removes the folder, as a signal does that asks the process to end; CURL_HOME is what it was.
    ~Curl_home();
    Curl_home(const Curl_home&) = delete;
    Curl_home& operator=(const Curl_home&) = delete;

    const std::string& folder() const { return m_folder; }

private:
    void write_settings() const;

    std::string m_folder;
    std::string m_file;
    std::optional<std::string> m_before;
    std::optional<Signal_cleanup> m_last_act;
};

}  // namespace frontpanel

#endif
