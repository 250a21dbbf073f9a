#include <frontpanel_editors/address_editor.h>
#include <frontpanel_editors/line_text.h>

#include <sstream>
#include <vector>

#include "entry_text.h"

namespace frontpanel {
namespace {

Field_line::Limits block_limits(std::size_t /*block*/) {
    return {Ip_entry::IP_VALUE_MIN, Ip_entry::IP_VALUE_MAX};
}

// The blocks of a valid address; what the check lets pass beside (runs of dots, a minus) is put right.
std::vector<Number_field> blocks_of(const std::string& address) {
    std::vector<Number_field> blocks;
    std::istringstream text(address);
    for (std::string block; std::getline(text, block, '.');) {
        if (!block.empty()) {
            blocks.push_back({std::stoi(block), 0, blocks.empty() ? "" : "."});
        }
    }
    return blocks;
}

}  // namespace

Address_editor::Address_editor() = default;
Address_editor::~Address_editor() = default;

void Address_editor::start() {
    const std::string address = value_text(edited());
    m_blocks.set(blocks_of(Ip_entry::Valid_ip(address.c_str()) ? address : Ip_entry::DEFAULT_IP));
    m_blocks.keep_limits(block_limits);
}

void Address_editor::remember() {
    m_opened = value_text(edited());
}

bool Address_editor::put_back() {
    return store_text(edited(), m_opened);
}

void Address_editor::step(Editor_key key, int steps) {
    if (key == Editor_key::ERASE) {
        m_blocks.erase();
    } else {
        m_blocks.step(key, {steps, wraps()}, block_limits);
    }
}

std::string Address_editor::typed_characters() const {
    return "0123456789.";
}

void Address_editor::put(char character) {
    m_blocks.type(character, block_limits);
}

bool Address_editor::is_typing() const {
    return m_blocks.is_typing();
}

bool Address_editor::is_stored() {
    return value_text(edited()) == m_blocks.text();
}

bool Address_editor::accept() {
    m_blocks.keep_limits(block_limits);
    const std::string address = m_blocks.text();
    return Ip_entry::Valid_ip(address.c_str()) && store_text(edited(), address);
}

void Address_editor::draw(int columns, Editor_view& shown) {
    m_blocks.draw(columns, shown);
}

}  // namespace frontpanel
