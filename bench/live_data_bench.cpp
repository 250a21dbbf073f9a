// Parsing a live-data document beside what the JSON library alone needs for the same file.
#include <frontpanel_data/live_data_parser.h>

#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>
#include <rapidjson/document.h>
#include <rapidjson/filereadstream.h>

namespace {

class Document_file {
public:
    explicit Document_file(const std::string& text) {
        std::FILE* const file = fdopen(mkstemp(m_path), "w");
        std::fwrite(text.data(), 1, text.size(), file);
        std::fclose(file);
    }
    ~Document_file() { unlink(m_path); }
    Document_file(const Document_file&) = delete;
    Document_file& operator=(const Document_file&) = delete;

    char* path() { return m_path; }

private:
    char m_path[32] = "/tmp/live-data-bench-XXXXXX";
};

std::string combo_box(int options) {
    std::string text = R"({"state":{"value":"1"},"options":[)";
    for (int i = 0; i < options; ++i) {
        const std::string number = std::to_string(i);
        text += R"({"value":")" + number + R"(","label":"Programme )" + number + "\"},";
    }
    text.back() = ']';
    return text + "}";
}

std::string tree(int nodes) {
    std::string text = R"({"label":"Top","children":[)";
    for (int i = 0; i < nodes; ++i) {
        text += R"({"label":"Leaf","type":"item","value":")" + std::to_string(i) +
                R"(","render":"plain","action":{"id":"go","type":"jump",)"
                R"("action_body":{"rule":"always","message":"Sure?"}}},)";
    }
    text.back() = ']';
    return text + "}";
}

void parse_bare(const char* path, rapidjson::Document& document) {
    std::FILE* const stream = std::fopen(path, "r");
    char buffer[16384];
    rapidjson::FileReadStream input(stream, buffer, sizeof buffer);
    document.ParseStream<rapidjson::kParseIterativeFlag>(input);
    std::fclose(stream);
    benchmark::DoNotOptimize(document.IsObject());
}

void read_bare(benchmark::State& state, const std::string& text) {
    Document_file file(text);
    for (auto _ : state) {
        rapidjson::Document document;
        parse_bare(file.path(), document);
    }
}

void read_combo_box_bare(benchmark::State& state) {
    read_bare(state, combo_box(static_cast<int>(state.range(0))));
}

void read_combo_box(benchmark::State& state) {
    Document_file file(combo_box(static_cast<int>(state.range(0))));
    for (auto _ : state) {
        LiveJSDataParser parser(file.path(), LiveJSDataParser::COMBOBOX, 0);
        benchmark::DoNotOptimize(parser.parseComboBox());
    }
}

void read_tree_bare(benchmark::State& state) {
    read_bare(state, tree(static_cast<int>(state.range(0))));
}

// With the nodes that a tree consists of by contract, which nobody fills in.
void read_tree_bare_with_nodes(benchmark::State& state) {
    Document_file file(tree(static_cast<int>(state.range(0))));
    for (auto _ : state) {
        rapidjson::Document document;
        parse_bare(file.path(), document);
        std::vector<std::unique_ptr<LiveJSDataParser::treenode>> nodes;
        for (int64_t i = 0; i < state.range(0); ++i) {
            nodes.emplace_back(new LiveJSDataParser::treenode);
        }
        benchmark::DoNotOptimize(nodes.data());
    }
}

void read_tree_without_list(benchmark::State& state) {
    Document_file file(tree(static_cast<int>(state.range(0))));
    for (auto _ : state) {
        LiveJSDataParser parser(file.path(), LiveJSDataParser::TREE, 0);
        benchmark::DoNotOptimize(parser.parseTree());
    }
}

void read_tree(benchmark::State& state) {
    Document_file file(tree(static_cast<int>(state.range(0))));
    for (auto _ : state) {
        LiveJSDataParser parser(file.path(), LiveJSDataParser::TREE, 0);
        benchmark::DoNotOptimize(parser.parseTreeAsList());
    }
}

BENCHMARK(read_combo_box_bare)->Arg(8)->Arg(1000)->Arg(20000);
BENCHMARK(read_combo_box)->Arg(8)->Arg(1000)->Arg(20000);
BENCHMARK(read_tree_bare)->Arg(8)->Arg(1000)->Arg(60000);
BENCHMARK(read_tree_bare_with_nodes)->Arg(8)->Arg(1000)->Arg(60000);
BENCHMARK(read_tree_without_list)->Arg(8)->Arg(1000)->Arg(60000);
BENCHMARK(read_tree)->Arg(8)->Arg(1000)->Arg(60000);

}  // namespace
