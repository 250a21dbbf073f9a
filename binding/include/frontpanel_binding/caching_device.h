// The device for a menu's bindings: passes every access on, and keeps the registry's values current.
//
// Hand it to every refresh and commit in place of the device. While it lives, engines take the values that
// have passed through it from the registry instead of reading the device. What the device changes by itself
// shows at the next `Binding_registry::poll`. A failing access leaves the values as they were, and its result is
// the caller's.
//
// It also detects entries that limit each other and write a parameter over and over within one commit: the
// registry freezes their suggestions until the commit is over, and the next `Binding_registry::settle` reports
// them.
//
// It is a `Pdt_data_access`, so that slot entries keep selecting sockets. Values are those of the selected
// socket: after another is selected, each is read again. Menu thread only.
#ifndef FRONTPANEL_BINDING_CACHING_DEVICE_H
#define FRONTPANEL_BINDING_CACHING_DEVICE_H

#include <cstdint>
#include <memory>
#include <optional>
#include <unordered_map>
#include <unordered_set>

#include <frontpanel_base/value_state.h>
#include <frontpanel_binding/binding_registry.h>
#include <frontpanel_data/pdt_data_access.h>

namespace frontpanel {

class Write_journal;

class Caching_device : public Pdt_data_access, public Value_states {
public:
    // `device` outlives the wrapper; `registry` must not be null and has one wrapper at a time.
    // The application's own fields of the interface start with the device's values, and are not passed on.
    Caching_device(Data_interface& device, std::shared_ptr<Binding_registry> registry);
    // The registry reads from its own interface again.
    ~Caching_device() override;
    Caching_device(const Caching_device&) = delete;
    Caching_device& operator=(const Caching_device&) = delete;

    // Whether the latest `Get` of the parameter through this wrapper failed; false for one that was never read.
    bool last_read_failed(uint32_t pid, uint32_t varidx) const;
    // The state of the parameter's value at a device that implements `Value_states`; empty for any other device. A
    // value that was old or not confirmed when it was read or written here remains so until it is read again, even if
    // the device has a newer one.
    std::optional<Value_state> state(uint32_t pid, uint32_t varidx) const override;

    // Internal: the journal that notes each write from now on; null for none.
    void set_journal(Write_journal* journal) { m_journal = journal; }

    void Init() override;
    int Get(unsigned int pid, unsigned int varidx, void* buffer, unsigned int length) override;
    int Set(unsigned int pid, unsigned int varidx, const void* buffer,
            unsigned int length) override;
    int Get_prod_list(PROD_LIST_S* list, bool remote, bool refresh) override;
    int Set_product_id(prod_id_t product) override;
    int Get_prod_alias_name(char* name, prod_id_t product) override;
    // For a device that is no `Pdt_data_access`: the local unit is selected and no other can be.
    int Is_current_selection_local() override;
    bool Is_use_selection_local() override;
    int setCurrentRouterSocket(int socket) override;

private:
    void keep_state(uint32_t pid, uint32_t varidx);
    void keep_written(uint32_t pid, uint32_t varidx);

    static constexpr int LOCAL_SOCKET = 0;

    static uint64_t address(uint32_t pid, uint32_t varidx) { return uint64_t{pid} << 32 | varidx; }

    Data_interface& m_device;
    Pdt_data_access* m_sockets;    // the device; null when it has no sockets
    const Value_states* m_states;  // the device; null when it does not implement it
    std::shared_ptr<Binding_registry> m_registry;
    std::unordered_set<uint64_t> m_failed_reads;
    std::unordered_map<uint64_t, Value_state>
        m_doubtful;  // states with which values were read here
    Write_journal* m_journal = nullptr;
};

}  // namespace frontpanel

#endif
