// The binary contract of the live-data classes, seen by a client that derives from them.
#include <frontpanel_data/live_data_parser.h>
#include <frontpanel_data/live_data_processor.h>

#include <cstddef>
#include <cstring>
#include <type_traits>

#include <gtest/gtest.h>

namespace {

// Where `member` lies in `object`, in bytes.
template <class Object, class Member>
std::ptrdiff_t offset(const Object& object, const Member& member) {
    return reinterpret_cast<const char*>(&member) - reinterpret_cast<const char*>(&object);
}

constexpr std::ptrdiff_t WORD = sizeof(void*);

struct Parser_client : LiveJSDataParser {
    using LiveJSDataParser::dlistStruct;
    using LiveJSDataParser::filename;
    using LiveJSDataParser::jsondocument;
    using LiveJSDataParser::jsonType;
    using LiveJSDataParser::LiveJSDataParser;
    using LiveJSDataParser::panelType;
    using LiveJSDataParser::pjstree;
};

TEST(Live_data_parser_layout, HoldsItsMembersInOrderAndNoVirtualTable) {
    static_assert(!std::is_polymorphic_v<LiveJSDataParser>);
    const Parser_client parser(nullptr, 0, 0);
    EXPECT_EQ(offset(parser, parser.jsondocument), 0);
    EXPECT_EQ(offset(parser, parser.filename), WORD);
    EXPECT_EQ(offset(parser, parser.jsonType), 2 * WORD);
    EXPECT_EQ(offset(parser, parser.panelType), 2 * WORD + 4);
    EXPECT_EQ(offset(parser, parser.pjstree), 2 * WORD + 8);
    EXPECT_EQ(offset(parser, parser.dlistStruct), 3 * WORD + 8);
    EXPECT_EQ(sizeof(LiveJSDataParser), static_cast<std::size_t>(4 * WORD + 8));
}

TEST(Live_data_parser_layout, HoldsItsRecordsFieldByField) {
    using Node = LiveJSDataParser::treenode;
    static_assert(std::is_same_v<Node, LiveJSDataParser::jsontree>);
    EXPECT_EQ(offsetof(Node, label), 0u);
    EXPECT_EQ(offsetof(Node, type), 256u);
    EXPECT_EQ(offsetof(Node, value), 512u);
    EXPECT_EQ(offsetof(Node, render), 768u);
    EXPECT_EQ(offsetof(Node, size), 1024u);
    EXPECT_EQ(offsetof(Node, children), 1024u + WORD);
    EXPECT_EQ(offsetof(Node, action), 1024u + 2 * WORD);
    EXPECT_EQ(offsetof(LiveJSDataParser::actionnode, id), 0u);
    EXPECT_EQ(offsetof(LiveJSDataParser::actionnode, type), 256u);
    EXPECT_EQ(offsetof(LiveJSDataParser::actionnode, action_body), 512u);
    EXPECT_EQ(offsetof(LiveJSDataParser::actionbody, rule), 0u);
    EXPECT_EQ(offsetof(LiveJSDataParser::actionbody, message), 256u);
    using List = LiveJSDataParser::displaylistStruct;
    EXPECT_EQ(offsetof(List, state), 0u);
    EXPECT_EQ(offsetof(List, size), 4u);
    EXPECT_EQ(offsetof(List, dlist), 8u);
}

TEST(Live_data_parser_layout, NumbersItsTypes) {
    EXPECT_EQ(LiveJSDataParser::MIN_JS_TYPE, 0);
    EXPECT_EQ(LiveJSDataParser::COMBOBOX, 0);
    EXPECT_EQ(LiveJSDataParser::TREE, 1);
    EXPECT_EQ(LiveJSDataParser::MAX_JS_TYPE, 2);
    static_assert(sizeof(message) == 150);
}

struct Processor_client : Live_Data_Processor {
    using Live_Data_Processor::Live_Data_Processor;
    using Live_Data_Processor::m_ip;
    using Live_Data_Processor::m_local;
    using Live_Data_Processor::m_slot;
    virtual int own_operation() { return 4711; }
};

TEST(Live_data_processor_layout, HoldsItsMembersInOrder) {
    const Processor_client processor(1, nullptr, 0);
    EXPECT_EQ(offset(processor, processor.m_ip), WORD);
    EXPECT_EQ(offset(processor, processor.m_slot), WORD + 16);
    EXPECT_EQ(offset(processor, processor.m_local), WORD + 20);
    static_assert(sizeof(Live_Data_Processor) == WORD + 24);
    static_assert(sizeof processor.m_ip == 16);
}

TEST(Live_data_processor_layout, HasNoVirtualOperationButItsDestructor) {
    static_assert(std::has_virtual_destructor_v<Live_Data_Processor>);
    // The destructor takes two slots; a client's first own operation follows at once.
    Processor_client processor(1, nullptr, 0);
    typedef int (*Operation)(Processor_client*);
    Operation* table = nullptr;
    std::memcpy(&table, static_cast<void*>(&processor), sizeof table);
    EXPECT_EQ(table[2](&processor), 4711);
}

}  // namespace
