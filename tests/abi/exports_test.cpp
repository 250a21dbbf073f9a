// What the shared library shows to the dynamic linker.
#include <gtest/gtest.h>
#include <stdio.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <regex>
#include <set>
#include <sstream>
#include <string>
#include <vector>

namespace {

std::vector<std::string> lines_of(const std::string& command) {
    std::vector<std::string> lines;
    FILE* const output = popen(command.c_str(), "r");
    EXPECT_NE(output, nullptr);
    if (output == nullptr) {
        return lines;
    }
    std::string line;
    for (int c = fgetc(output); c != EOF; c = fgetc(output)) {
        if (c == '\n') {
            lines.push_back(line);
            line.clear();
        } else {
            line += static_cast<char>(c);
        }
    }
    EXPECT_EQ(pclose(output), 0) << command;
    return lines;
}

struct Symbol {
    std::string name;  // demangled
    char kind;         // as nm tells it
    std::size_t size;  // in bytes
};

std::vector<Symbol> exported_symbols() {
    static const std::regex LINE(R"([0-9a-f]+(?: ([0-9a-f]+))? (\w) (.*))");
    std::vector<Symbol> symbols;
    for (const std::string& line :
         lines_of("nm -D -C -S --defined-only '" FRONTPANEL_DATA_LIBRARY "'")) {
        std::smatch parts;
        if (std::regex_match(line, parts, LINE)) {
            const std::size_t size = parts[1].matched ? std::stoul(parts[1], nullptr, 16) : 0;
            symbols.push_back({parts[3], parts[2].str()[0], size});
        }
    }
    EXPECT_GT(symbols.size(), 200u);
    return symbols;
}

// Every word that the public headers hold outside of comments.
std::set<std::string> public_words() {
    static const std::regex WORD(R"([A-Za-z_]\w*)");
    std::set<std::string> words;
    const std::filesystem::path folder = FRONTPANEL_SOURCE_DIR "/include/frontpanel_data";
    for (const auto& header : std::filesystem::directory_iterator(folder)) {
        std::ifstream file(header.path());
        for (std::string line; std::getline(file, line);) {
            line.erase(std::min(line.find("//"), line.size()));
            for (std::sregex_iterator at(line.begin(), line.end(), WORD), end; at != end; ++at) {
                words.insert(at->str());
            }
        }
    }
    EXPECT_EQ(words.count("Data_entry"), 1u);
    return words;
}

// The outermost name that a symbol belongs to: "Data_entry" of "vtable for Data_entry" and of
// "Data_entry::Get_pid() const".
std::string owner_of(std::string name) {
    for (const char* const start :
         {"vtable for ", "typeinfo for ", "VTT for ", "guard variable for "}) {
        if (name.rfind(start, 0) == 0) {
            name.erase(0, std::string(start).size());
        }
    }
    return name.substr(0, name.find_first_of(":([<"));
}

// Names that compilers keep to themselves.
bool is_not_ours(const Symbol& symbol) {
    return symbol.name.rfind("__", 0) == 0;
}

TEST(Exports, AreDeclaredInThePublicHeaders) {
    const std::set<std::string> words = public_words();
    for (const Symbol& symbol : exported_symbols()) {
        if (is_not_ours(symbol)) {
            continue;
        }
        const std::string owner = owner_of(symbol.name);
        const bool is_operator = owner.rfind("operator", 0) == 0;
        EXPECT_TRUE(is_operator || words.count(owner) == 1) << symbol.name;
    }
}

// Whoever carries the same templates would bind to ours, and would miss those that an optimiser drops.
TEST(Exports, HoldNothingOfOtherLibraries) {
    static const std::regex OTHERS(R"((^|[ (<])(std|__gnu_cxx|boost|rapidjson)::)");
    for (const Symbol& symbol : exported_symbols()) {
        const std::string head = symbol.name.substr(0, symbol.name.find_first_of("(<"));
        EXPECT_FALSE(std::regex_search(head, OTHERS)) << symbol.name;
    }
}

TEST(Exports, HoldNothingOfPrivateNamespaces) {
    static const std::regex PRIVATE(
        R"((^|[ (])(diagnostics|assertion|marquee|dependants|option_test|neighbours|\(anonymous namespace\))::)");
    for (const Symbol& symbol : exported_symbols()) {
        EXPECT_FALSE(std::regex_search(symbol.name, PRIVATE)) << symbol.name;
    }
}

// Programs know types by their descriptions, which hold the names.
TEST(Exports, HoldNoNamesOfTypes) {
    for (const Symbol& symbol : exported_symbols()) {
        EXPECT_NE(symbol.name.rfind("typeinfo name for ", 0), 0u) << symbol.name;
    }
}

TEST(Exports, HoldEachClassOnce) {
    const std::vector<Symbol> symbols = exported_symbols();
    for (const char* const name :
         {"Data_interface",     "Pdt_data_access", "Data_model",    "Integer_model",
          "String_model",       "Data_entry",      "Node_entry",    "Range_entry",
          "Enum_entry",         "Slot_enum_entry", "String_entry",  "Ip_entry",
          "Time_entry",         "Binding",         "Selection",     "NumericRangeSelection",
          "EnumSelection",      "StringSelection", "WarnSelection", "IPv4Selection",
          "TimeSelection",      "Timer",           "LinuxTimer",    "Link_entry",
          "Live_Data_Processor"}) {
        int tables = 0;
        int types = 0;
        for (const Symbol& symbol : symbols) {
            tables += symbol.name == std::string("vtable for ") + name ? 1 : 0;
            types += symbol.name == std::string("typeinfo for ") + name ? 1 : 0;
        }
        EXPECT_EQ(tables, 1) << name;
        EXPECT_EQ(types, 1) << name;
    }
}

TEST(Exports, HoldEachMessageClassOnce) {
    std::map<std::string, int> tables;
    for (const Symbol& symbol : exported_symbols()) {
        const std::string start = "vtable for FrontPanel::";
        if (symbol.name.rfind(start, 0) == 0) {
            ++tables[symbol.name.substr(start.size())];
        }
    }
    std::map<std::string, int> expected;
    for (const char* const name :
         {"Message", "PayloadMessage", "HeartBeatMessage", "AckMessage", "NackMessage",
          "StartupMessage", "ResetMessage", "UpgradeStartMessage", "UpgradeEndMessage",
          "RequestDeviceTypeMessage", "RequestSerialNumberMessage", "RequestFirmwareVersionMessage",
          "UserInputTimeoutShortcutMessage", "DisplayUpdateMessage", "DisplayClearMessage",
          "UserInputTimeoutMessage", "SelectPressMessageClass", "EscapePressMessageClass",
          "GenericInvalidMessage"}) {
        expected[name] = 1;
    }
    EXPECT_EQ(tables, expected);
}

// A longer table is a new operation, which a class that others derive from must not get.
TEST(Exports, HoldTablesOfTheAgreedLength) {
    const std::map<std::string, std::size_t> operations = {
        {"Data_interface", 6},      {"Pdt_data_access", 9}, {"Data_model", 7},
        {"Integer_model", 9},       {"String_model", 10},   {"Data_entry", 79},
        {"Node_entry", 79},         {"Range_entry", 88},    {"Enum_entry", 88},
        {"Slot_enum_entry", 91},    {"String_entry", 81},   {"Ip_entry", 82},
        {"Time_entry", 81},         {"Link_entry", 113},    {"Binding", 17},
        {"Selection", 5},           {"Timer", 3},           {"LinuxTimer", 3},
        {"Live_Data_Processor", 0},
    };
    std::size_t found = 0;
    for (const Symbol& symbol : exported_symbols()) {
        const std::string start = "vtable for ";
        if (symbol.name.rfind(start, 0) != 0) {
            continue;
        }
        const auto expected = operations.find(symbol.name.substr(start.size()));
        if (expected != operations.end()) {
            ++found;
            // Before the operations: the offset to the top, the type, and two slots of the destructor.
            EXPECT_EQ(symbol.size, (expected->second + 4) * sizeof(void*)) << symbol.name;
        }
    }
    EXPECT_EQ(found, operations.size());
}

TEST(Exports, HoldTheGlobalsThatApplicationsSet) {
    const std::vector<Symbol> symbols = exported_symbols();
    for (const char* const name :
         {"debug", "setup_link", "link_dummy", "VarIdDataInfStore::m_pDataAccessInf"}) {
        bool found = false;
        for (const Symbol& symbol : symbols) {
            found = found || (symbol.name == name && (symbol.kind == 'B' || symbol.kind == 'D'));
        }
        EXPECT_TRUE(found) << name;
    }
}

// A program that is linked to a fixed address holds copies of them, which an optimised library has to use too.
TEST(Exports, HoldNoVariableThatIsNotListedAsPreemptible) {
    std::ifstream file(FRONTPANEL_SOURCE_DIR "/src/preemptible.list");
    const std::string list((std::istreambuf_iterator<char>(file)), {});
    std::size_t variables = 0;
    for (const std::string& line : lines_of("nm -D --defined-only '" FRONTPANEL_DATA_LIBRARY "'")) {
        static const std::regex VARIABLE(R"([0-9a-f]+ [BD] ((?!_ZT)\w+))");
        std::smatch parts;
        if (std::regex_match(line, parts, VARIABLE)) {
            ++variables;
            EXPECT_TRUE(std::regex_search(list, std::regex("\\b" + parts[1].str() + ";")))
                << parts[1];
        }
    }
    EXPECT_GT(variables, 10u);
}

std::vector<std::string> dynamic_values(const std::string& tag) {
    const std::regex line(".*\\(" + tag + "\\).*\\[(.*)\\]");
    std::vector<std::string> values;
    for (const std::string& text : lines_of("readelf -d -W '" FRONTPANEL_DATA_LIBRARY "'")) {
        std::smatch parts;
        if (std::regex_match(text, parts, line)) {
            values.push_back(parts[1]);
        }
    }
    return values;
}

TEST(Library, IsNamedByItsMajorVersion) {
    EXPECT_EQ(dynamic_values("SONAME"), std::vector<std::string>{"libfrontpanel_data.so.0"});
}

TEST(Library, NeedsTheRuntimeOnly) {
    static const std::regex RUNTIME(
        R"((libstdc\+\+|libm|libgcc_s|libc|libpthread|ld(-linux|64).*|lib\w*san|libclang_rt.*)\.so.*)");
    const std::vector<std::string> needed = dynamic_values("NEEDED");
    EXPECT_FALSE(needed.empty());
    for (const std::string& library : needed) {
        EXPECT_TRUE(std::regex_match(library, RUNTIME)) << library;
    }
}

// Optimised builds leave out the compiler's start files, which the destruction of variables needs.
TEST(Imports, RequestNoCodeAtTheEndOfTheProcess) {
    const std::vector<std::string> imports =
        lines_of("nm -D --undefined-only '" FRONTPANEL_DATA_LIBRARY "'");
    EXPECT_GT(imports.size(), 20u);
    for (const std::string& import : imports) {
        EXPECT_EQ(import.find("atexit"), std::string::npos) << import;
    }
}

TEST(Symbols, HoldNoCodeThatRunsBeforeMain) {
    for (const std::string& symbol : lines_of("nm '" FRONTPANEL_DATA_LIBRARY "'")) {
        EXPECT_EQ(symbol.find("_GLOBAL__sub_I"), std::string::npos) << symbol;
    }
}

}  // namespace
