#include <frontpanel_data/live_data_parser.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <new>

#include <rapidjson/error/en.h>

#include "assertion.h"
#include "livedata/live_data_lines.h"

char message[150] = "";

namespace {

using rapidjson::Document;
using rapidjson::Value;
using Shape_error = LiveJSDataParser::Shape_error;

constexpr off_t MAX_DOCUMENT_BYTES = off_t{64} * 1024 * 1024;
// A value takes up to 34 bytes for as little as one byte of the document, and the JSON library crashes when
// memory runs out.
constexpr std::size_t MAX_VALUES = std::size_t{6} * 1024 * 1024;
// A field holds this many asterisks and its terminator.
constexpr unsigned int MAX_DEPTH = 255;
// A node takes two kilobytes for as little as three bytes of the document.
constexpr std::size_t MAX_NODES = 65536;

// Lines about single members that one run writes: a card must not flood the system log.
constexpr std::size_t MAX_MEMBER_LINES = 32;

// What a document is refused for without its parser's help.
const char* const NOT_OPENED = "The file could not be opened.";
const char* const TOO_LARGE = "The document is too large.";
const char* const NOT_PARSED = "The document is not one JSON text.";
const char* const NO_MEMORY = "Out of memory.";

struct Close_file {
    void operator()(std::FILE* file) const { std::fclose(file); }
};
typedef std::unique_ptr<std::FILE, Close_file> File;

const char* printable(const char* text) {
    return text != nullptr ? text : "(null)";
}

template <std::size_t SIZE>
bool is_named(const Value::Member& member, const char (&name)[SIZE]) {
    return member.name.GetStringLength() == SIZE - 1 &&
           std::memcmp(member.name.GetString(), name, SIZE - 1) == 0;
}

char* copy_text(const char* text, std::size_t length) {
    char* const copy = new char[length + 1];
    std::memcpy(copy, text, length);
    copy[length] = '\0';
    return copy;
}

// Reads `size` bytes into the document's own memory, where they are zero-terminated; sets `size` to what there
// was. Null without memory.
char* read_text(std::FILE* file, std::size_t& size, Document& document) {
    char* const text = static_cast<char*>(document.GetAllocator().Malloc(size + 1));
    if (text != nullptr) {
        size = std::fread(text, 1, size, file);
        text[size] = '\0';
    }
    return text;
}

// Counts what may begin a value, also where it is part of a text.
bool has_too_many_values(const char* text, std::size_t size) {
    if (size <= MAX_VALUES) {
        return false;
    }
    const auto count = std::count_if(
        text, text + size, [](char c) { return c == ',' || c == ':' || c == '[' || c == '{'; });
    return static_cast<std::size_t>(count) > MAX_VALUES;
}

// Null when all went well, else the reason.
const char* parse_file(std::FILE* file, Document& document) {
    struct stat status;
    if (fstat(fileno(file), &status) != 0 || status.st_size > MAX_DOCUMENT_BYTES) return TOO_LARGE;
    auto size = static_cast<std::size_t>(status.st_size);
    char* const text = read_text(file, size, document);
    if (text == nullptr) return NO_MEMORY;
    if (has_too_many_values(text, size)) return TOO_LARGE;
    // In place, since copying every text out of a stream takes longer than all that follows. Iteratively:
    // the depth of the document must not decide how much stack the panel needs.
    rapidjson::InsituStringStream stream(text);
    document.ParseStream<rapidjson::kParseInsituFlag | rapidjson::kParseIterativeFlag>(stream);
    if (document.HasParseError()) {
        return rapidjson::GetParseError_En(document.GetParseError());
    }
    // The parser takes a zero byte for the end of the document; what stands behind it was not read.
    return stream.Tell() < size ? NOT_PARSED : nullptr;
}

void report_unopened(const char* name) {
    std::snprintf(message, sizeof message, "Could not open JSON file \"%s\"\n", name);
    LIVE_TEXT("Could not open JSON file \"%s\"\n", name);
    LIVE_LOG("ParseJSON", "Could not open JSON file \"%s\"\n", name);
}

void report_unparsed(const char* name) {
    std::snprintf(message, sizeof message, "Could not parse JSON file \"%s\"\n", name);
    LIVE_TEXT("Could not parse JSON file \"%s\"\n", name);
    // Unlike the line above, this one has no place in the source: readers of the system log depend on that.
    syslog(LOG_ERR, "Could not parse JSON file \"%s\"\n", name);
}

// Without waiting: the name may be that of a FIFO without a writer.
File open_for_reading(const char* name) {
    const int descriptor = open(name, O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
    std::FILE* const file = descriptor >= 0 ? fdopen(descriptor, "r") : nullptr;
    if (file == nullptr && descriptor >= 0) {
        close(descriptor);
    }
    return File(file);
}

// Null on failure; `error` is then the reason.
std::unique_ptr<Document> read_document(const char* filename, const char*& error) {
    const char* const name = printable(filename);
    LIVE_TEXT("Parsing JSON file (\"%s\")...\n", name);
    const File file = filename != nullptr ? open_for_reading(filename) : File();
    if (!file) {
        report_unopened(name);
        error = NOT_OPENED;
        return nullptr;
    }
    auto document = std::make_unique<Document>();
    error = parse_file(file.get(), *document);
    if (error != nullptr) {
        report_unparsed(name);
        return nullptr;
    }
    return document;
}

// A number beyond `int` stays beyond every list instead of wrapping into it.
int to_state(const char* text) {
    const long number = std::strtol(text, nullptr, 10);
    return static_cast<int>(std::clamp<long>(number, INT_MIN, INT_MAX));
}

typedef char Text[256];

void write_text(Text& field, unsigned int depth, const char* text) {
    const std::size_t room = sizeof(Text) - 1;
    const std::size_t stars = std::min<std::size_t>(depth, room);
    const std::size_t length = strnlen(text, room - stars);
    std::memset(field, '*', stars);
    std::memcpy(field + stars, text, length);
    field[stars + length] = '\0';
}

// Writes the member `name` of an object, where it is a text.
void write_text_of(const Value& object, const char* name, unsigned int depth, Text& field) {
    const auto member = object.FindMember(name);
    if (member != object.MemberEnd() && member->value.IsString()) {
        write_text(field, depth, member->value.GetString());
    }
}

// The field that a member of a node goes to; null when it is none of the texts.
Text* field_of(LiveJSDataParser::treenode& node, const Value::Member& member) {
    if (is_named(member, "label")) return &node.label;
    if (is_named(member, "type")) return &node.type;
    if (is_named(member, "value")) return &node.value;
    if (is_named(member, "render")) return &node.render;
    return nullptr;
}

void read_action(const Value& action, unsigned int depth, LiveJSDataParser::actionnode& node) {
    if (!action.IsObject()) throw Shape_error{__LINE__};
    write_text_of(action, "id", depth, node.id);
    write_text_of(action, "type", depth, node.type);
    const auto body = action.FindMember("action_body");
    if (body != action.MemberEnd() && body->value.IsObject()) {
        write_text_of(body->value, "rule", depth, node.action_body.rule);
        write_text_of(body->value, "message", depth, node.action_body.message);
    }
}

}  // namespace

// One run over a document on behalf of one operation, whose name its lines carry. It ends with the number of
// the lines that it left out, if any.
class __attribute__((visibility("hidden"))) LiveJSDataParser::Reader {
public:
    Reader(LiveJSDataParser& parser, const char* operation)
        : m_parser(parser),
          m_operation(operation),
          m_node_count(0),
          m_line_count(0),
          m_error(nullptr) {}
    ~Reader() { report_left_out(); }
    Reader(const Reader&) = delete;
    Reader& operator=(const Reader&) = delete;

    void load();
    void clear_list();
    void clear_tree();

    // Null when it failed and said so.
    displaylistStruct* run_combo_box();
    // 0, or -1 when it failed and said so.
    int run_tree(bool as_list);
    void read_tree(const Value& value, jsontree* node, unsigned int depth,
                   std::vector<char*>& list);

    // Why the run ended with the exception `number`.
    const char* reason(int number);

private:
    // Whether the run may write one more line about a member.
    bool has_line() { return ++m_line_count <= MAX_MEMBER_LINES; }
    void report_left_out() const;
    void read_combo_box();
    displaylistStruct* report_combo_box(const char* why) const;
    int report_tree(const char* why) const;
    void store_lines(const std::vector<char*>& lines);
    void read_state(const Value& state);
    void read_options(const Value& options);
    char* read_option(const Value& option);
    void read_member(const Value::Member& member, jsontree* node, unsigned int depth,
                     std::vector<char*>& list);
    void read_children(const Value& children, jsontree* node, unsigned int depth,
                       std::vector<char*>& list);
    void allocate_list(std::size_t size);

    LiveJSDataParser& m_parser;
    const char* const m_operation;
    std::size_t m_node_count;
    std::size_t m_line_count;  // lines about members, also those that were left out
    const char* m_error;
    char m_number[32];
};

void LiveJSDataParser::Reader::load() {
    m_parser.FreeDocument(&m_parser.jsondocument);
    m_parser.jsondocument = read_document(m_parser.filename, m_error).release();
    if (m_parser.jsondocument == nullptr) {
        std::snprintf(message, sizeof message,
                      "Could not create radpidJSON document [function=%s][line=%d]\n", m_operation,
                      __LINE__);
        throw Shape_error{__LINE__};
    }
}

// Keeps the record itself, which the caller of an earlier parse may still hold.
void LiveJSDataParser::Reader::clear_list() {
    displaylistStruct*& list = m_parser.dlistStruct;
    if (list == nullptr) {
        list = new displaylistStruct();
    }
    for (int i = 0; i < list->size; ++i) {
        delete[] list->dlist[i];
    }
    delete[] list->dlist;
    *list = {-1, 0, nullptr};
}

void LiveJSDataParser::Reader::clear_tree() {
    m_parser.deleteJT(m_parser.pjstree);
    m_parser.pjstree = nullptr;
    m_parser.pjstree = new treenode;
    m_parser.initialiseJT(m_parser.pjstree);
}

const char* LiveJSDataParser::Reader::reason(int number) {
    if (m_error != nullptr) {
        return m_error;
    }
    std::snprintf(m_number, sizeof m_number, "Exception Nr.[%d]", number);
    return m_number;
}

void LiveJSDataParser::Reader::report_left_out() const {
    if (m_line_count > MAX_MEMBER_LINES) {
        LIVE_ERROR(m_operation, "%zu more lines left out for jsonfile[%s]\n",
                   m_line_count - MAX_MEMBER_LINES, printable(m_parser.filename));
    }
}

void LiveJSDataParser::Reader::allocate_list(std::size_t size) {
    m_parser.dlistStruct->dlist = new char*[size]();
    m_parser.dlistStruct->size = static_cast<int>(size);
}

LiveJSDataParser::displaylistStruct* LiveJSDataParser::Reader::report_combo_box(
    const char* why) const {
    LIVE_ERROR(m_operation,
               "***Failed to parse combobox LiveJSData*** jsonfile[%s] err_message[%s]\n",
               printable(m_parser.filename), why);
    return nullptr;
}

LiveJSDataParser::displaylistStruct* LiveJSDataParser::Reader::run_combo_box() try {
    if (m_parser.jsonType != COMBOBOX) {
        LIVE_LINE(m_operation, "jsonType is not Combobox jsonType[%d]\n", m_parser.jsonType);
        return nullptr;
    }
    clear_list();
    load();
    read_combo_box();
    return m_parser.dlistStruct;
} catch (Shape_error number) {
    return report_combo_box(reason(number));
} catch (const std::bad_alloc&) {
    return report_combo_box(NO_MEMORY);
}

void LiveJSDataParser::Reader::read_combo_box() {
    const Document& document = *m_parser.jsondocument;
    if (!document.IsObject()) throw Shape_error{__LINE__};
    bool has_state = false;
    bool has_options = false;
    for (auto itr = document.MemberBegin(); itr != document.MemberEnd(); ++itr) {
        if (is_named(*itr, "state")) {
            has_state = true;
            read_state(itr->value);
        } else if (is_named(*itr, "options")) {
            has_options = true;
            read_options(itr->value);
        }
    }
    if (!has_state) {
        LIVE_LINE(m_operation, "state not found in combobox jsonfile[%s]\n", m_parser.filename);
    }
    if (!has_options) {
        LIVE_LINE(m_operation, "options not found in combobox jsonfile[%s]\n", m_parser.filename);
    }
}

void LiveJSDataParser::Reader::read_state(const Value& state) {
    const bool reports = has_line();
    if (!state.IsObject() || !state.HasMember("value")) {
        if (reports) {
            LIVE_LINE(m_operation, "state value not found in combobox jsonfile[%s]\n",
                      m_parser.filename);
        }
        return;
    }
    const Value& value = state["value"];
    FRONTPANEL_ASSERT(value.IsString(), "itr->value[\"value\"].IsString()");
    m_parser.dlistStruct->state = to_state(value.GetString());
    if (reports) {
        LIVE_LINE(m_operation, "cbnode->state[%d]\n", m_parser.dlistStruct->state);
    }
}

void LiveJSDataParser::Reader::read_options(const Value& options) {
    if (!options.IsArray()) throw Shape_error{__LINE__};
    const int state = m_parser.dlistStruct->state;
    clear_list();
    m_parser.dlistStruct->state = state;
    allocate_list(options.Size());
    char** slot = m_parser.dlistStruct->dlist;
    for (const Value& option : options.GetArray()) {
        FRONTPANEL_ASSERT(option.IsObject(), "a[i].IsObject()");
        *slot++ = read_option(option);
    }
}

// Null when the option is to be skipped.
char* LiveJSDataParser::Reader::read_option(const Value& option) {
    // One walk for both, since this is done for every option.
    const Value* label = nullptr;
    bool has_value = false;
    for (const Value::Member& member : option.GetObject()) {
        if (is_named(member, "label") && label == nullptr) {
            label = &member.value;
        } else if (is_named(member, "value")) {
            has_value = true;
        }
    }
    if (!has_value || label == nullptr || !label->IsString()) {
        if (has_line()) {
            LIVE_ERROR(m_operation,
                       "value/label not found inside option item in combobox jsonfile[%s]\n",
                       m_parser.filename);
        }
        return nullptr;
    }
    return copy_text(label->GetString(), label->GetStringLength());
}

int LiveJSDataParser::Reader::report_tree(const char* why) const {
    LIVE_ERROR(m_operation,
               "***Failed to parse tree LiveJSData: jsonfilenamep[%s] err_message[%s]***\n\n",
               printable(m_parser.filename), why);
    return -1;
}

int LiveJSDataParser::Reader::run_tree(bool as_list) try {
    if (m_parser.jsonType != TREE) {
        LIVE_ERROR(m_operation, "jsonType is not TREE jsonType[%d]\n", m_parser.jsonType);
        return -1;
    }
    clear_list();
    clear_tree();
    load();
    std::vector<char*> lines;
    read_tree(*m_parser.jsondocument, m_parser.pjstree, 0, lines);
    if (as_list) {
        store_lines(lines);
    }
    return 0;
} catch (Shape_error number) {
    return report_tree(reason(number));
} catch (const std::bad_alloc&) {
    return report_tree(NO_MEMORY);
}

void LiveJSDataParser::Reader::read_tree(const Value& value, jsontree* node, unsigned int depth,
                                         std::vector<char*>& list) {
    m_parser.initialiseJT(node);
    if (!value.IsObject()) throw Shape_error{__LINE__};
    if (depth > MAX_DEPTH) throw Shape_error{__LINE__};
    for (const Value::Member& member : value.GetObject()) {
        read_member(member, node, depth, list);
    }
}

void LiveJSDataParser::Reader::read_member(const Value::Member& member, jsontree* node,
                                           unsigned int depth, std::vector<char*>& list) {
    Text* const field = member.value.IsString() ? field_of(*node, member) : nullptr;
    if (field != nullptr) {
        write_text(*field, depth, member.value.GetString());
        list.push_back(*field);
    } else if (is_named(member, "action")) {
        read_action(member.value, depth, node->action);
    } else if (is_named(member, "children")) {
        read_children(member.value, node, depth, list);
    } else if (has_line()) {
        LIVE_ERROR(m_operation, "Unknown field[%s] in tree json file\n", member.name.GetString());
    }
}

void LiveJSDataParser::Reader::read_children(const Value& children, jsontree* node,
                                             unsigned int depth, std::vector<char*>& list) {
    if (!children.IsArray()) throw Shape_error{__LINE__};
    // A second array would have to drop nodes that the list points into.
    if (node->children != nullptr) throw Shape_error{__LINE__};
    m_node_count += children.Size();
    if (m_node_count > MAX_NODES) throw Shape_error{__LINE__};
    node->children = new treenode*[children.Size()]();
    node->size = static_cast<int>(children.Size());
    treenode** child = node->children;
    for (const Value& element : children.GetArray()) {
        *child = new treenode;
        read_tree(element, *child++, depth + 1, list);
    }
}

void LiveJSDataParser::Reader::store_lines(const std::vector<char*>& lines) {
    allocate_list(lines.size());
    m_parser.dlistStruct->state = 0;
    std::transform(lines.begin(), lines.end(), m_parser.dlistStruct->dlist,
                   [](const char* line) { return copy_text(line, std::strlen(line)); });
}

LiveJSDataParser::LiveJSDataParser(char* file, int type, int panel)
    : jsondocument(nullptr),
      filename(nullptr),
      jsonType(MIN_JS_TYPE),
      panelType(0),
      pjstree(nullptr),
      dlistStruct(nullptr) {
    if (file == nullptr) {
        LIVE_LINE("LiveJSDataParser", "Invalid Filename[%s] \n", printable(file));
        return;
    }
    if (type >= MAX_JS_TYPE || panel != 0) {
        LIVE_LINE("LiveJSDataParser",
                  "Unsupported Received[%d] or Respose[%d] format for file[%s]\n", type, panel,
                  file);
        return;
    }
    filename = file;
    jsonType = type;
    panelType = panel;
    Reader reader(*this, "LiveJSDataParser");
    if (type == TREE) {
        reader.clear_tree();
    }
    reader.clear_list();
}

LiveJSDataParser::~LiveJSDataParser() {
    FreeDocument(&jsondocument);
    deleteJT(pjstree);
    delete_dList();
}

Document* LiveJSDataParser::ParseJSON(const char* name) {
    const char* error = nullptr;
    return read_document(name, error).release();
}

LiveJSDataParser::displaylistStruct* LiveJSDataParser::parseComboBox() {
    return Reader(*this, "parseComboBox").run_combo_box();
}

LiveJSDataParser::displaylistStruct* LiveJSDataParser::parseTreeAsList() {
    return Reader(*this, "parseTreeAsList").run_tree(true) == 0 ? dlistStruct : nullptr;
}

int LiveJSDataParser::parseTree() {
    return Reader(*this, "parseTree").run_tree(false);
}

void LiveJSDataParser::parseEachSubTree(const Value* value, jsontree* node, unsigned int depth,
                                        std::vector<char*>& list) {
    if (node != nullptr && value != nullptr) {
        Reader(*this, "parseEachSubTree").read_tree(*value, node, depth, list);
    } else if (node != nullptr) {
        initialiseJT(node);
    }
}

void LiveJSDataParser::initialiseJT(treenode* node) {
    // Not the two kilobytes: a tree has a node for every few bytes of its document.
    for (char* text :
         {node->label, node->type, node->value, node->render, node->action.id, node->action.type,
          node->action.action_body.rule, node->action.action_body.message}) {
        *text = '\0';
    }
    node->size = 0;
    node->children = nullptr;
}

void LiveJSDataParser::deleteJT(treenode* node) {
    if (node == nullptr) {
        return;
    }
    for (int i = 0; i < node->size; ++i) {
        deleteJT(node->children[i]);
    }
    delete[] node->children;
    delete node;
}

void LiveJSDataParser::delete_dList() {
    if (dlistStruct != nullptr) {
        Reader(*this, "delete_dList").clear_list();
        delete dlistStruct;
        dlistStruct = nullptr;
    }
}

void LiveJSDataParser::FreeDocument(Document** document) {
    if (document != nullptr) {
        delete *document;
        *document = nullptr;
    }
}

void LiveJSDataParser::printdList() {
    if (dlistStruct == nullptr) {
        return;
    }
    LIVE_TEXT("state:[%d]\n", dlistStruct->state);
    // The first option has always followed on the same line.
    LIVE_TEXT("Options:");
    for (int i = 0; i < dlistStruct->size; ++i) {
        LIVE_TEXT("id: [%s]\n", printable(dlistStruct->dlist[i]));
    }
}

void LiveJSDataParser::printJT(treenode* node, int depth) {
    if (node == nullptr) {
        return;
    }
    const int indent = 2 * depth;
    LIVE_TEXT("%*s=>\n", indent, "");
    LIVE_TEXT("%*slabel: [%s]\n", indent, "", node->label);
    LIVE_TEXT("%*stype: [%s]\n", indent, "", node->type);
    LIVE_TEXT("%*svalue: [%s]\n", indent, "", node->value);
    LIVE_TEXT("%*srender: [%s]\n", indent, "", node->render);
    LIVE_TEXT("%*saction.id: [%s]\n", indent, "", node->action.id);
    LIVE_TEXT("%*saction.type: [%s]\n", indent, "", node->action.type);
    LIVE_TEXT("%*saction.action_body.rule: [%s]\n", indent, "", node->action.action_body.rule);
    LIVE_TEXT("%*saction.action_body.message: [%s]\n", indent, "",
              node->action.action_body.message);
    for (int i = 0; i < node->size; ++i) {
        printJT(node->children[i], depth + 1);
    }
}
