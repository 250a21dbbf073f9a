// A device that a test scripts: it answers the calls that the test expects, in the expected order, and
// fails the test on any other call and on an expected call that never came.
//
//     Fake_device device;
//     device.expect_get_integer(120, 3, 42);
//     device.expect_set_integer(120, 3, 43);
//
// Standing answers (`answer_get_integer`, ...) serve any number of calls that no expectation is ahead of.
// Every call is recorded in `calls()`.
#ifndef FRONTPANEL_DATA_TESTS_SUPPORT_FAKE_DEVICE_H
#define FRONTPANEL_DATA_TESTS_SUPPORT_FAKE_DEVICE_H

#include <frontpanel_data/pdt_data_access.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <deque>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "support/bytes.h"

namespace support {

class Fake_device : public Pdt_data_access {
public:
    Fake_device() = default;
    ~Fake_device() override { verify(); }

    // Expectations. `result` other than 0 is a failure of the device; what it wrote before it failed is
    // in `bytes`. A read copies at most as many bytes as the caller asked for.
    void expect_get(unsigned int pid, unsigned int varidx, unsigned int length, std::string bytes,
                    int result = 0) {
        expect(get_text(pid, varidx, length), {std::move(bytes), result});
    }
    void expect_get_integer(unsigned int pid, unsigned int varidx, int32_t value, int result = 0) {
        expect_get(pid, varidx, 4, bytes_of(value), result);
    }
    // A text arrives in a buffer of 257 bytes, with its terminator.
    void expect_get_text(unsigned int pid, unsigned int varidx, const std::string& text,
                         int result = 0) {
        expect_get(pid, varidx, 257, text + '\0', result);
    }
    void expect_set(unsigned int pid, unsigned int varidx, const std::string& bytes,
                    int result = 0) {
        expect(set_text(pid, varidx, bytes), {"", result});
    }
    void expect_set_integer(unsigned int pid, unsigned int varidx, int32_t value, int result = 0) {
        expect_set(pid, varidx, bytes_of(value), result);
    }
    void expect_prod_list(bool remote, bool refresh, std::vector<PROD_LIST_S> rows,
                          int result = 0) {
        expect(prod_list_text(remote, refresh), {"", result, std::move(rows)});
    }
    void expect_product_id(prod_id_t product, int result = 0) {
        expect(product_id_text(product), {"", result});
    }
    void expect_alias(prod_id_t product, std::string alias, int result = 0) {
        expect(alias_text(product), {std::move(alias) + '\0', result});
    }
    void expect_current_selection_local(int result) {
        expect("Is_current_selection_local", {"", result});
    }
    void expect_use_selection_local(bool result) {
        expect("Is_use_selection_local", {"", result ? 1 : 0});
    }
    void expect_socket(int socket, int result = 0) { expect(socket_text(socket), {"", result}); }

    // Standing answers.
    void answer_get_integer(unsigned int pid, unsigned int varidx, int32_t value, int result = 0) {
        m_standing[get_text(pid, varidx, 4)] = {bytes_of(value), result};
    }
    void answer_get_text(unsigned int pid, unsigned int varidx, const std::string& text,
                         int result = 0) {
        m_standing[get_text(pid, varidx, 257)] = {text + '\0', result};
    }
    void answer_prod_list(bool remote, bool refresh, std::vector<PROD_LIST_S> rows,
                          int result = 0) {
        m_standing[prod_list_text(remote, refresh)] = {"", result, std::move(rows)};
    }
    void answer_alias(prod_id_t product, std::string alias, int result = 0) {
        m_standing[alias_text(product)] = {std::move(alias) + '\0', result};
    }
    void answer_current_selection_local(int result) {
        m_standing["Is_current_selection_local"] = {"", result};
    }
    void answer_use_selection_local(bool result) {
        m_standing["Is_use_selection_local"] = {"", result ? 1 : 0};
    }
    void answer_socket(int socket, int result = 0) {
        m_standing[socket_text(socket)] = {"", result};
    }

    // Every call so far, such as "Get pid=120 varidx=3 length=4" and
    // "Set pid=120 varidx=3 bytes=[2b 00 00 00]".
    const std::vector<std::string>& calls() const { return m_calls; }

    // Fails the test for each expected call that has not come, and forgets it. The destructor does it too.
    void verify() {
        for (const Expected& expected : m_expected) {
            ADD_FAILURE() << "the device was not called: " << expected.call;
        }
        m_expected.clear();
    }

    void Init() override { answer("Init"); }
    int Get(unsigned int pid, unsigned int varidx, void* buffer, unsigned int length) override {
        const Answer given = answer(get_text(pid, varidx, length));
        std::memcpy(buffer, given.bytes.data(), std::min<std::size_t>(given.bytes.size(), length));
        return given.result;
    }
    int Set(unsigned int pid, unsigned int varidx, const void* buffer,
            unsigned int length) override {
        return answer(set_text(pid, varidx, bytes_of(buffer, length))).result;
    }
    int Get_prod_list(PROD_LIST_S* list, bool remote, bool refresh) override {
        const Answer given = answer(prod_list_text(remote, refresh));
        std::copy_n(given.rows.begin(), std::min<std::size_t>(given.rows.size(), 16), list);
        return given.result;
    }
    int Set_product_id(prod_id_t product) override {
        return answer(product_id_text(product)).result;
    }
    int Get_prod_alias_name(char* name, prod_id_t product) override {
        const Answer given = answer(alias_text(product));
        std::memcpy(name, given.bytes.data(), std::min<std::size_t>(given.bytes.size(), 100));
        return given.result;
    }
    int Is_current_selection_local() override {
        return answer("Is_current_selection_local").result;
    }
    bool Is_use_selection_local() override { return answer("Is_use_selection_local").result != 0; }
    int setCurrentRouterSocket(int socket) override { return answer(socket_text(socket)).result; }

private:
    struct Answer {
        std::string bytes;
        int result = 0;
        std::vector<PROD_LIST_S> rows = {};
    };
    struct Expected {
        std::string call;
        Answer answer;
    };

    static std::string parameter_text(unsigned int pid, unsigned int varidx) {
        return " pid=" + std::to_string(pid) + " varidx=" + std::to_string(varidx);
    }
    static std::string get_text(unsigned int pid, unsigned int varidx, unsigned int length) {
        return "Get" + parameter_text(pid, varidx) + " length=" + std::to_string(length);
    }
    static std::string set_text(unsigned int pid, unsigned int varidx, const std::string& bytes) {
        return "Set" + parameter_text(pid, varidx) + " bytes=[" + hex(bytes) + "]";
    }
    static std::string prod_list_text(bool remote, bool refresh) {
        return "Get_prod_list remote=" + std::to_string(remote) +
               " refresh=" + std::to_string(refresh);
    }
    static std::string product_id_text(prod_id_t product) {
        return "Set_product_id " + std::to_string(product);
    }
    static std::string alias_text(prod_id_t product) {
        return "Get_prod_alias_name " + std::to_string(product);
    }
    static std::string socket_text(int socket) {
        return "setCurrentRouterSocket " + std::to_string(socket);
    }

    void expect(std::string call, Answer given) {
        m_expected.push_back({std::move(call), std::move(given)});
    }

    Answer answer(const std::string& call) {
        m_calls.push_back(call);
        if (!m_expected.empty() && m_expected.front().call == call) {
            Answer given = m_expected.front().answer;
            m_expected.pop_front();
            return given;
        }
        const auto standing = m_standing.find(call);
        if (standing != m_standing.end()) {
            return standing->second;
        }
        ADD_FAILURE() << "unexpected call of the device: " << call << "\nexpected next: "
                      << (m_expected.empty() ? "nothing" : m_expected.front().call);
        return {"", -1};
    }

    std::deque<Expected> m_expected;
    std::map<std::string, Answer> m_standing;
    std::vector<std::string> m_calls;
};

}  // namespace support

#endif
