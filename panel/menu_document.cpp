#include "menu_document.h"

namespace panel {

Menu_document::Menu_document(const std::string& file, const std::string& text) {
    const Source& source = m_sources.emplace_back(Source{file, m_sources.size()});
    m_root = parse_json(source, text);
}

}  // namespace panel
