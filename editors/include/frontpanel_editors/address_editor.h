// Edits a dotted IPv4 address block by block.
//
// COARSER and FINER choose the block, the encoder changes it within 0 to 255. Typed digits replace it, and a point
// moves to the next one. A stored text that is no address starts as 0.0.0.0. The entry's text changes only when the
// address is accepted.
#ifndef FRONTPANEL_EDITORS_ADDRESS_EDITOR_H
#define FRONTPANEL_EDITORS_ADDRESS_EDITOR_H

#include <frontpanel_editors/editor_base.h>
#include <frontpanel_editors/field_line.h>

#include <cstddef>
#include <string>

namespace frontpanel {

class Address_editor : public Editor_base<IPv4Selection, Ip_entry> {
public:
    Address_editor();
    ~Address_editor() override;

    std::string proposed_address() const { return m_blocks.text(); }
    // The block that the encoder changes, 0 to 3 from the left.
    std::size_t block() const { return m_blocks.chosen(); }

protected:
    void start() override;
    void remember() override;
    bool put_back() override;
    void step(Editor_key key, int steps) override;
    bool is_stored() override;
    bool accept() override;
    void draw(int columns, Editor_view& shown) override;
    std::string typed_characters() const override;
    void put(char character) override;
    bool is_typing() const override;

private:
    Field_line m_blocks;
    std::string m_opened;  // the entry's text when it was opened
};

}  // namespace frontpanel

#endif
