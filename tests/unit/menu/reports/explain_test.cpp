#include "unit/menu/reports/reports_fixture.h"

namespace frontpanel {
namespace {

using Explain = Menu_reports;

TEST_F(Explain, AHiddenEntryIsExplainedByItsRulesAndTheValuesTheySaw) {
    EXPECT_EQ(explained("Audio/Gain"),
              "Audio: hidden: none of its items is shown\n"
              "Audio/Gain: hidden: no visible rule holds\n"
              "  rules:\n"
              "    line 1: visible if [101] == 1\n"
              "      [101] is 0\n"
              "      does not hold\n"
              "    line 1: access read-only if [102] == 1\n"
              "      [102] is 1\n"
              "      holds: read-only\n"
              "    suggested: hidden\n"
              "    suggested: access read-only\n"
              "  access: read-only\n"
              "  allowed: 0..100\n");
    EXPECT_EQ(explained("gain"), explained("Audio/Gain"));
    m_loaded.device().set_integer(101, 0, 1);
    EXPECT_EQ(explained("gain"),
              "Audio: shown\n"
              "Audio/Gain: shown\n"
              "  rules:\n"
              "    line 1: visible if [101] == 1\n"
              "      [101] is 1\n"
              "      holds: visible\n"
              "    line 1: access read-only if [102] == 1\n"
              "      [102] is 1\n"
              "      holds: read-only\n"
              "    suggested: visible\n"
              "    suggested: access read-only\n"
              "  access: read-only\n"
              "  allowed: 0..100\n");
}

TEST_F(Explain, OptionsAreToldWithWhatTheProductHas) {
    EXPECT_EQ(explained("Fix"),
              "Fix: hidden: the product has none of its options: gps, slot5\n"
              "  option \"gps\": the product has none: does not hold\n"
              "  option \"slot5\": number 5 of 4: does not hold\n"
              "  allowed: 0..1\n");
    EXPECT_EQ(explained("Seat"),
              "Seat: hidden: the menu file hides it\n"
              "  option \"slot3\": number 3 of 4: holds\n"
              "  allowed: 0..1\n");
}

TEST_F(Explain, ALinkIsExplainedWithItsToggleAndWhatItHouses) {
    EXPECT_EQ(explained("Home/Audio.Gain"),
              "Home/Audio.Gain: hidden: it leads to a hidden item: no visible rule holds\n"
              "  toggle: [mode] == 0 && [lock] == 1\n"
              "    [mode] is 0\n"
              "    [lock] is 1\n"
              "    on\n"
              "  links to Gain: hidden: no visible rule holds\n"
              "    rules:\n"
              "      line 1: visible if [101] == 1\n"
              "        [101] is 0\n"
              "        does not hold\n"
              "      line 1: access read-only if [102] == 1\n"
              "        [102] is 1\n"
              "        holds: read-only\n"
              "      suggested: hidden\n"
              "      suggested: access read-only\n"
              "    access: read-only\n"
              "    allowed: 0..100\n");
}

TEST_F(Explain, AnEntryThatIsNotThereIsTold) {
    EXPECT_EQ(error_of("Audio/Bass"), "the menu has no entry \"Audio/Bass\"");
}

}  // namespace
}  // namespace frontpanel
