// The values of the simulated device in a file, so that they survive a restart. docs/state-file.md describes it.
#ifndef FRONTPANEL_PANEL_STATE_FILE_H
#define FRONTPANEL_PANEL_STATE_FILE_H

#include <frontpanel_device/memory_device.h>

#include <map>
#include <string>
#include <tuple>
#include <vector>

namespace panel {

class State_file {
public:
    // The device outlives the object.
    State_file(std::string file, Memory_device& device);

    const std::string& name() const { return m_file; }

    // Gives the device the values that the file keeps. What the device does not have is kept for the device that
    // has it; a value that a parameter cannot hold any more is dropped. A damaged file is put aside under another
    // name, and the start values stay. The lines that tell of these. Input_error, and nothing happened, when there
    // is a file that cannot be read: its values are not to be lost.
    std::vector<std::string> restore();

    // Writes the device's values, and what is kept for others. Input_error when that cannot be done; then the file
    // is as it was. On any thread, one at a time.
    void save() const;

private:
    using Key = std::tuple<uint32_t, uint32_t, RETURN_TYPE>;
    using Values = std::map<Key, Memory_device::Value>;

    Values read(const std::string& text) const;
    std::string put_aside() const;
    void apply(const Values& values, std::vector<std::string>& lines);
    std::string text() const;

    std::string m_file;
    Memory_device& m_device;
    Values m_for_others;  // what this device does not have
};

}  // namespace panel

#endif
