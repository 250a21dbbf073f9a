// A data interface that stands before another and makes chosen calls fail.
//
//     Faulty_interface faulty(device);
//     faulty.fail_call(Operation::SET, 2);              // the second write fails
//     faulty.fail(Operation::GET, {-1, "AB"});          // every read writes two bytes and fails
//
// A failing call does not reach the interface behind it.
#ifndef FRONTPANEL_DATA_TESTS_SUPPORT_FAULTY_INTERFACE_H
#define FRONTPANEL_DATA_TESTS_SUPPORT_FAULTY_INTERFACE_H

#include <frontpanel_data/pdt_data_access.h>

#include <algorithm>
#include <cstring>
#include <map>
#include <string>
#include <utility>

namespace support {

enum class Operation { GET, SET, GET_PROD_LIST, SET_PRODUCT_ID, GET_PROD_ALIAS_NAME, SET_SOCKET };

struct Fault {
    int result = -1;      // 0 for a call that claims success
    std::string bytes{};  // what a read or an alias lookup has written by then
};

class Faulty_interface : public Pdt_data_access {
public:
    // `target` must outlive this interface.
    explicit Faulty_interface(Pdt_data_access& target) : m_target(target) {}

    // Every call from now on, until `recover`.
    void fail(Operation operation, Fault fault = {}) { m_lasting[operation] = std::move(fault); }
    // The call of this number, counted from 1 since the interface was made.
    void fail_call(Operation operation, unsigned int number, Fault fault = {}) {
        m_single[{operation, number}] = std::move(fault);
    }
    void recover(Operation operation) { m_lasting.erase(operation); }
    // Calls so far, failed ones included.
    unsigned int count(Operation operation) const {
        const auto found = m_counts.find(operation);
        return found == m_counts.end() ? 0 : found->second;
    }

    void Init() override { m_target.Init(); }
    int Get(unsigned int pid, unsigned int varidx, void* buffer, unsigned int length) override {
        if (const Fault* fault = next_fault(Operation::GET)) {
            write(*fault, buffer, length);
            return fault->result;
        }
        return m_target.Get(pid, varidx, buffer, length);
    }
    int Set(unsigned int pid, unsigned int varidx, const void* buffer,
            unsigned int length) override {
        const Fault* fault = next_fault(Operation::SET);
        return fault ? fault->result : m_target.Set(pid, varidx, buffer, length);
    }
    int Get_prod_list(PROD_LIST_S* list, bool remote, bool refresh) override {
        const Fault* fault = next_fault(Operation::GET_PROD_LIST);
        return fault ? fault->result : m_target.Get_prod_list(list, remote, refresh);
    }
    int Set_product_id(prod_id_t product) override {
        const Fault* fault = next_fault(Operation::SET_PRODUCT_ID);
        return fault ? fault->result : m_target.Set_product_id(product);
    }
    int Get_prod_alias_name(char* name, prod_id_t product) override {
        if (const Fault* fault = next_fault(Operation::GET_PROD_ALIAS_NAME)) {
            write(*fault, name, 100);
            return fault->result;
        }
        return m_target.Get_prod_alias_name(name, product);
    }
    int Is_current_selection_local() override { return m_target.Is_current_selection_local(); }
    bool Is_use_selection_local() override { return m_target.Is_use_selection_local(); }
    int setCurrentRouterSocket(int socket) override {
        const Fault* fault = next_fault(Operation::SET_SOCKET);
        return fault ? fault->result : m_target.setCurrentRouterSocket(socket);
    }

private:
    static void write(const Fault& fault, void* buffer, std::size_t length) {
        std::memcpy(buffer, fault.bytes.data(), std::min(fault.bytes.size(), length));
    }

    // Counts one call; the fault that it meets, or null.
    const Fault* next_fault(Operation operation) {
        const unsigned int number = ++m_counts[operation];
        const auto single = m_single.find({operation, number});
        if (single != m_single.end()) {
            return &single->second;
        }
        const auto lasting = m_lasting.find(operation);
        return lasting == m_lasting.end() ? nullptr : &lasting->second;
    }

    Pdt_data_access& m_target;
    std::map<Operation, Fault> m_lasting;
    std::map<std::pair<Operation, unsigned int>, Fault> m_single;
    std::map<Operation, unsigned int> m_counts;
};

}  // namespace support

#endif
