// The text of a menu, read from its file.
#ifndef FRONTPANEL_PANEL_MENU_DOCUMENT_H
#define FRONTPANEL_PANEL_MENU_DOCUMENT_H

#include <deque>
#include <string>

#include "json_document.h"

namespace panel {

// What is found wrong becomes one of `problems`, which the document outlives.
class Menu_document {
public:
    // `text` is the text of `file`. Placed_error when it is no JSON.
    Menu_document(const std::string& file, const std::string& text);

    const Json_node& root() const { return m_root; }

private:
    std::deque<Source> m_sources;
    Json_node m_root;
};

}  // namespace panel

#endif
