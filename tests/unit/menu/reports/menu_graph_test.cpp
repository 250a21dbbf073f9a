#include <frontpanel_menu/menu_graph.h>
#include "unit/menu/reports/reports_fixture.h"

namespace frontpanel {
namespace {

using Menu_graph = Menu_reports;

TEST_F(Menu_graph, TheGraphTellsLinksMountsAndDependantsApart) {
    EXPECT_EQ(graph_of(menu()),
              "digraph \"Main \\\"A&amp;B\\\" \\\\n\" {\n"
              "    rankdir=LR;\n"
              "    node [shape=box];\n"
              "    n0 [label=\"Main \\\"A&amp;B\\\" \\\\n\"];\n"
              "    n1 [label=\"Audio\", color=gray, fontcolor=gray];\n"
              "    n2 [label=\"Gain\\n100.1\", style=rounded, color=gray, fontcolor=gray];\n"
              "    n3 [label=\"Mode\\n101\", style=rounded];\n"
              "    n4 [label=\"Fix\\n101\", style=rounded, color=gray, fontcolor=gray];\n"
              "    n5 [label=\"Seat\\n101\", style=rounded, color=gray, fontcolor=gray];\n"
              "    n6 [label=\"Presets\"];\n"
              "    n7 [label=\"Audio.Gain\", style=rounded, color=gray, fontcolor=gray];\n"
              "    n8 [label=\"Home\"];\n"
              "    n9 [label=\"Audio.Gain\", style=rounded, color=gray, fontcolor=gray];\n"
              "    n10 [label=\"Presets\"];\n"
              "    n2 [color=blue, fontcolor=blue];\n"
              "    p0 [shape=plaintext, label=\"[102]\"];\n"
              "    n0 -> n1;\n"
              "    n1 -> n2;\n"
              "    n0 -> n3;\n"
              "    n0 -> n4;\n"
              "    n0 -> n5;\n"
              "    n0 -> n6;\n"
              "    n6 -> n10 [style=dotted];\n"
              "    n0 -> n7;\n"
              "    n7 -> n2 [style=dashed];\n"
              "    n8 -> n9;\n"
              "    n9 -> n2 [style=dashed];\n"
              "    n3 -> n2 [color=blue, constraint=false];\n"
              "    p0 -> n2 [color=blue, constraint=false];\n"
              "}\n");
}

}  // namespace
}  // namespace frontpanel
