#include <frontpanel_editors/address_editor.h>

#include <array>
#include <sstream>
#include <vector>

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
    std::array<char, MAX_STRING_LENGTH + 1> address = {};
    edited().Get_value(address.data(), address.size());
    m_blocks.set(
        blocks_of(Ip_entry::Valid_ip(address.data()) ? address.data() : Ip_entry::DEFAULT_IP));
    m_blocks.keep_limits(block_limits);
}

void Address_editor::step(Editor_key key) {
    m_blocks.step(key, block_limits);
}

bool Address_editor::accept() {
    const std::string address = m_blocks.text();
    return Ip_entry::Valid_ip(address.c_str()) &&
           edited().Set_value(address.c_str(), static_cast<unsigned int>(address.size())) == 0;
}

void Address_editor::draw(int columns, Editor_view& shown) {
    m_blocks.draw(columns, shown);
}
