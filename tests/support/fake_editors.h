// The six value editors, each recording what the library asks of it.
//
//     std::vector<std::string> log;
//     Fake_range_editor editor(&log);
//     Data_entry::EntryTypeSpecificOperation(&volume, nullptr, editor.pointer(), false, 0x2, nullptr);
//     // log: "Prepare Volume"
#ifndef FRONTPANEL_DATA_TESTS_SUPPORT_FAKE_EDITORS_H
#define FRONTPANEL_DATA_TESTS_SUPPORT_FAKE_EDITORS_H

#include <frontpanel_data/entry.h>
#include <frontpanel_data/selection.h>

#include <string>
#include <utility>
#include <vector>

namespace support {

template <class Editor>
class Fake_editor : public Editor {
public:
    // `log` must outlive the editor.
    explicit Fake_editor(std::vector<std::string>* log) : m_log(log) {}

    // What the dispatcher is given.
    void* pointer() { return static_cast<Selection*>(this); }

    // What `Escape` answers.
    bool escapes = false;

    void Prepare(Data_entry* entry) override { note("Prepare " + name_of(entry)); }
    void ExitLEDs() override { note("ExitLEDs"); }
    bool Escape() override {
        note("Escape");
        return escapes;
    }
    void Set_escape_entry(Data_entry* entry) override {
        note("Set_escape_entry " + name_of(entry));
    }
    void Set_select_entry(Data_entry* entry) override {
        note("Set_select_entry " + name_of(entry));
    }

protected:
    void note(std::string line) { m_log->push_back(std::move(line)); }

private:
    static std::string name_of(const Data_entry* entry) {
        return entry != nullptr ? entry->Get_name() : "(null)";
    }

    std::vector<std::string>* m_log;
};

class Fake_range_editor : public Fake_editor<NumericRangeSelection> {
public:
    using Fake_editor::Fake_editor;
    void Coarser_step() override { note("Coarser_step"); }
    void Finer_step() override { note("Finer_step"); }
};

class Fake_enum_editor : public Fake_editor<EnumSelection> {
public:
    using Fake_editor::Fake_editor;
    void Set_use_line_info(bool use_line_info) override {
        note("Set_use_line_info " + std::to_string(use_line_info));
    }
    void Set_selected(int32_t selected) override {
        note("Set_selected " + std::to_string(selected));
    }
    void Set_selected_line(int32_t selected_line) override {
        note("Set_selected_line " + std::to_string(selected_line));
    }
};

using Fake_string_editor = Fake_editor<StringSelection>;
using Fake_warning_editor = Fake_editor<WarnSelection>;
using Fake_address_editor = Fake_editor<IPv4Selection>;
using Fake_time_editor = Fake_editor<TimeSelection>;

}  // namespace support

#endif
