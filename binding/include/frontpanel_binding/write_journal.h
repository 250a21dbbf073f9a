// Keeps the device's values from before a write, so that several writes can be undone as one, together with the writes
// of rules that followed. Menu thread only.
#ifndef FRONTPANEL_BINDING_WRITE_JOURNAL_H
#define FRONTPANEL_BINDING_WRITE_JOURNAL_H

#include <set>
#include <vector>

#include <frontpanel_binding/caching_device.h>
#include <frontpanel_binding/done_writes.h>

namespace frontpanel {

class Write_journal {
public:
    // Notes every write through `device` while it lives. A device has one journal at a time; device and registry
    // outlive it.
    Write_journal(Caching_device& device, Binding_registry& registry);
    ~Write_journal();
    Write_journal(const Write_journal&) = delete;
    Write_journal& operator=(const Write_journal&) = delete;

    // Writes back what the device held at the beginning, the latest change first. Write rules count as not having
    // written since. Returns the variables that could not be written back; the journal is empty afterwards.
    std::vector<Device_variable> put_back();

    // Internal: for the caching device, before each write.
    void note(unsigned int pid, unsigned int varidx, unsigned int length);

private:
    struct Held {
        Device_variable variable;
        return_s value;
        bool is_known;
    };

    bool put_back(const Held& held);

    Caching_device& m_device;
    Binding_registry& m_registry;
    std::vector<Done_writes> m_done;
    std::set<Device_variable> m_noted;
    std::vector<Held> m_held;  // in the order of the first writes
};

}  // namespace frontpanel

#endif
