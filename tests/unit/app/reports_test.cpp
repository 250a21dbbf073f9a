#include "reports.h"

#include <algorithm>

#include "menu_files.h"
#include "support/capture.h"

namespace frontpanel {
namespace {

class Reports_test : public Menu_files {
protected:
    std::string report_of() {
        return support::capture(0, [this] { status = report(options); }).out;
    }
    std::string check_of() {
        return support::capture(0,
                                [this] {
                                    Output_log log(options.log);
                                    status = check(options, log);
                                })
            .out;
    }

    int status = -1;
};

TEST_F(Reports_test, AreAskedForByTheirOptions) {
    EXPECT_FALSE(is_report(options));
    options.dump = true;
    EXPECT_TRUE(is_report(options));
    options = {};
    options.graph = true;
    EXPECT_TRUE(is_report(options));
    options = {};
    options.explain = "Gain";
    EXPECT_TRUE(is_report(options));
}

TEST_F(Reports_test, ADumpHasALineForEachEntry) {
    options.dump = true;
    const std::string dump = report_of();
    EXPECT_EQ(status, EXIT_PLAYED);
    EXPECT_EQ(std::count(dump.begin(), dump.end(), '\n'), 2) << dump;
    EXPECT_NE(dump.find("\n\t"), std::string::npos) << dump;
    EXPECT_NE(dump.find("Gain"), std::string::npos) << dump;
}

TEST_F(Reports_test, AGraphIsForGraphviz) {
    options.graph = true;
    const std::string graph = report_of();
    EXPECT_EQ(graph.rfind("digraph", 0), 0U) << graph;
    EXPECT_NE(graph.find("Gain"), std::string::npos) << graph;
}

TEST_F(Reports_test, AnEntryIsExplainedByItsId) {
    options.explain = "gain";
    EXPECT_NE(report_of().find("Gain"), std::string::npos);
    options.explain = "absent";
    EXPECT_EQ(error_of([this] { report_of(); }), "the menu has no entry \"absent\"");
}

TEST_F(Reports_test, ACheckCountsTheEntries) {
    EXPECT_EQ(check_of(), options.menu + ": a menu of 2 entries\n");
    EXPECT_EQ(status, EXIT_PLAYED);
}

TEST_F(Reports_test, ACheckReadsTheScriptToo) {
    options.script = write("a.script", "jump\n");
    EXPECT_EQ(error_of([this] { check_of(); }), options.script + ":1: unknown word \"jump\"");
}

TEST_F(Reports_test, OutputThatCannotBeWrittenIsAnError) {
    EXPECT_EQ(error_of([] { check_written(true); }), "standard output cannot be written");
    EXPECT_EQ(error_of([] { check_written(false); }), "");
}

}  // namespace
}  // namespace frontpanel
