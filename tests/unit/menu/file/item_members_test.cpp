// The JSON Schema of menu files says what the loader accepts.
#include <rapidjson/document.h>
#include <rapidjson/schema.h>
#include <rapidjson/stringbuffer.h>

#include <optional>
#include <set>

#include <frontpanel_menu/entry_kind.h>
#include "file/item_builder.h"
#include "support/panel_fixture.h"

namespace frontpanel {
namespace {

class Menu_schema : public testing::Test {
protected:
    Menu_schema() {
        const std::string text = read_input_file(FRONTPANEL_SOURCE_DIR "/docs/menu.schema.json");
        m_text.Parse(text.c_str());
        if (!m_text.HasParseError()) {
            m_schema.emplace(m_text);
        }
    }
    void SetUp() override { ASSERT_TRUE(m_schema); }

    // Where a menu file departs from the schema; empty for nowhere.
    std::string fault_of(const std::string& menu) const {
        rapidjson::Document document;
        document.Parse(menu.c_str());
        if (document.HasParseError()) {
            return "no JSON";
        }
        rapidjson::SchemaValidator validator(*m_schema);
        if (document.Accept(validator)) {
            return "";
        }
        rapidjson::StringBuffer place;
        validator.GetInvalidDocumentPointer().Stringify(place);
        return place.GetSize() == 0 ? "/" : std::string(place.GetString(), place.GetSize());
    }
    static std::set<std::string> names_in(const rapidjson::Value& object) {
        std::set<std::string> names;
        for (const auto& member : object.GetObject()) {
            names.emplace(member.name.GetString());
        }
        return names;
    }

    rapidjson::Document m_text;
    std::optional<rapidjson::SchemaDocument> m_schema;
};

TEST_F(Menu_schema, HoldsForTheShippedMenus) {
    EXPECT_EQ(fault_of(read_input_file(FRONTPANEL_SOURCE_DIR "/menus/demo.json")), "");
    EXPECT_EQ(fault_of(read_input_file(FRONTPANEL_SOURCE_DIR "/menus/this-machine.json")), "");
}

// The loader reports what it does not know, so each of its types has exactly the members of the schema.
TEST_F(Menu_schema, NamesTheMembersOfEveryTypeOfItem) {
    const rapidjson::Value& definitions = m_text["definitions"];
    std::set<std::string> types;
    for (const Entry_kind& kind : entry_kinds()) {
        if (kind.name == nullptr) {
            continue;
        }
        const std::string name = std::string("item-") + kind.name;
        types.insert(name);
        ASSERT_TRUE(definitions.HasMember(name.c_str())) << name;
        std::set<std::string> described = names_in(definitions[name.c_str()]["properties"]);
        EXPECT_EQ(described.erase("repeat"), 1U) << name;
        const std::vector<const char*> known = members_of(kind);
        EXPECT_EQ(described, std::set<std::string>(known.begin(), known.end())) << name;
    }
    for (const std::string& definition : names_in(definitions)) {
        EXPECT_EQ(definition.rfind("item-", 0) == 0, types.count(definition) == 1) << definition;
    }
}

TEST_F(Menu_schema, NamesTheMembersOfTheFile) {
    std::string members;
    for (const std::string& name : names_in(m_text["properties"])) {
        members += "\"" + name + "\": null, ";
    }
    const std::string errors = error_of("{" + members + "\"other\": 1}");
    EXPECT_EQ(errors.find("unknown member"), errors.rfind("unknown member")) << errors;
    EXPECT_NE(errors.find("unknown member \"other\""), std::string::npos) << errors;
}

TEST_F(Menu_schema, AcceptsAndRefusesWhatTheLoaderDoes) {
    constexpr const char* PARAMETERS =
        R"({"pid": 5, "name": "level", "type": "integer", "min": 0, "max": 9, "value": 7})";
    const std::string accepted[] = {
        R"({"type": "range", "name": "Level", "pid": 5})",
        R"({"type": "range", "name": "Level {n}", "parameter": "level",
            "repeat": {"counter": "n", "from": 1, "to": 3}})",
        R"({"type": "node", "name": "N", "items": [{"type": "range", "name": "L", "pid": 5}]},
           {"type": "link", "target": "N/L", "behaviour": "skip", "escape": {"select": "N"}})",
        R"({"type": "bridge", "item": {"type": "range", "pid": 5}})",
    };
    for (const std::string& items : accepted) {
        const std::string menu = menu_text(PARAMETERS, items);
        EXPECT_EQ(fault_of(menu), "") << menu;
        EXPECT_EQ(error_of(menu), "") << menu;
    }
    const std::string refused[] = {
        R"({"type": "range", "name": "Level", "pid": 5, "formt": "%d"})",
        R"({"type": "range", "name": "Level"})",
        R"({"type": "range", "name": "Level", "pid": 5, "parameter": "level"})",
        R"({"type": "range", "name": "Level", "pid": -1})",
        R"({"type": "range", "name": "Level", "pid": 5, "max": 2147483647})",
        R"({"type": "range", "name": "Level", "pid": 5, "access": "none"})",
        R"({"type": "knob", "name": "Level", "pid": 5})",
        R"({"type": "node", "name": "N", "items": []})",
        R"({"type": "link"})",
        R"({"type": "link", "target": "N", "name": "L"})",
        R"({"type": "mount", "name": "N"})",
        R"(5)",
        "",
    };
    for (const std::string& items : refused) {
        const std::string menu = menu_text(PARAMETERS, items);
        EXPECT_NE(fault_of(menu), "") << menu;
        EXPECT_NE(error_of(menu), "") << menu;
    }
}

}  // namespace
}  // namespace frontpanel
