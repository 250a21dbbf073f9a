// The driver "file" over folders laid out as the kernel lays out its own, with every fault of a file.
#include <frontpanel_driver_file/file_driver.h>

#include <fcntl.h>
#include <sys/stat.h>

#include <filesystem>
#include <fstream>

#include <frontpanel_base/descriptor.h>
#include "support/folder.h"
#include "unit/drivers/menu_fixture.h"

namespace support {
namespace {

using namespace frontpanel;

class File_driver_test : public Driver_menu_test {
protected:
    // A number, of the further members of its source.
    static std::string number(std::uint32_t pid, const std::string& members,
                              const std::string& limits = R"("min": -100000, "max": 100000)") {
        return R"({"pid": )" + std::to_string(pid) + R"(, "type": "integer", )" + limits +
               R"(, "source": {)" + members + "}}";
    }
    static std::string text(std::uint32_t pid, const std::string& members) {
        return R"({"pid": )" + std::to_string(pid) +
               R"(, "type": "text", "length": 10, "source": {)" + members + "}}";
    }
    // Loads a menu file whose paths are relative to the test's folder.
    void load(const std::string& parameters) {
        load_menu({&file_driver_row()}, m_folder.path(), R"({"files": {"driver": "file"}})",
                  parameters);
    }
    void load_number(const std::string& members) { load(number(1, members)); }
    void write(const std::string& name, const std::string& content) {
        const std::filesystem::path path = m_folder.file(name);
        std::filesystem::create_directories(path.parent_path());
        std::ofstream(path, std::ios::binary) << content;
    }
    std::string content(const std::string& name) const {
        std::ifstream file(m_folder.file(name), std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }
    // What a parameter is read as now: its value, or why there is none.
    std::string read(std::uint32_t pid = 1) {
        Device_cache& cache = m_device->cache();
        char buffer[257] = {};
        m_clock->advance(5s);
        cache.Get(pid, 0, buffer, 4);  // wanted
        cache.step();
        const Value_state state = *cache.state(pid, 0);
        if (state.freshness != Freshness::FRESH || !state.reason.empty()) {
            return state.reason;
        }
        if (cache.Get(pid, 0, buffer, sizeof buffer) == 0) {
            return "'" + std::string(buffer) + "'";
        }
        const auto number = number_of(cache, pid);
        return number ? std::to_string(*number) : "no value";
    }
    Lines write_number(std::int32_t value, std::uint32_t pid = 1) {
        Device_cache& cache = m_device->cache();
        cache.take_events();
        set_number(cache, pid, value);
        cache.step();
        return texts_of(cache.take_events());
    }

    Folder m_folder;
};

// ---- values

TEST_F(File_driver_test, ANumberIsTheFilesContentScaledExactly) {
    write("temp", "36500\n");
    write("load", "0.52");
    write("gain", " -7 \n");
    load(number(1, R"("path": "temp", "scale": "1/1000")") + "," +
         number(2, R"("path": "load", "scale": 100)") + "," + number(3, R"("path": "gain")"));
    ASSERT_EQ(problems(), Lines{});
    EXPECT_EQ(read(1), "37");
    EXPECT_EQ(read(2), "52");
    EXPECT_EQ(read(3), "-7");
    write("temp", "-36499\n");
    EXPECT_EQ(read(1), "-36");
}

TEST_F(File_driver_test, ANumberMayBeHexadecimal) {
    load_number(R"("path": "id", "format": "hexadecimal")");
    ASSERT_EQ(problems(), (Lines{"a hexadecimal number is at least 0: \"min\" is below"}));
}

TEST_F(File_driver_test, HexadecimalNumbersAreReadAndWritten) {
    load(number(1, R"("path": "id", "format": "hexadecimal")", R"("min": 0, "max": 100000)"));
    ASSERT_EQ(problems(), Lines{});
    const struct {
        const char* content;
        const char* result;
    } cases[] = {{"0x1f\n", "31"},
                 {"1F", "31"},
                 {"0XfF", "255"},
                 {"0x", "not a number: \"0x\""},
                 {"-1f", "not a number: \"-1f\""},
                 {"0x1g", "not a number: \"0x1g\""},
                 {"ffffffff", "the number does not fit 32 bits: \"ffffffff\""},
                 {"ffffffffffffffffff", "the number does not fit 32 bits: \"ffffffffffffffffff\""}};
    for (const auto& [content, result] : cases) {
        SCOPED_TRACE(content);
        write("id", content);
        EXPECT_EQ(read(), result);
    }
    EXPECT_EQ(write_number(43981), Lines{"files: 1: read again"});
    EXPECT_EQ(content("id"), "0xabcd\n");
}

TEST_F(File_driver_test, ATextIsTheFilesFirstLine) {
    write("state", "  ready \nsecond\n");
    write("long", "01234567890");
    write("empty", "");
    load(text(1, R"("path": "state")") + "," + text(2, R"("path": "long")") + "," +
         text(3, R"("path": "empty")"));
    EXPECT_EQ(read(1), "'ready'");
    EXPECT_EQ(read(2), "the text is longer than 10 bytes");
    EXPECT_EQ(read(3), "''");
}

TEST_F(File_driver_test, AValueMayBeAWordOfALine) {
    write("meminfo", "MemTotal:       16315412 kB\nMemFree:         1234 kB\n");
    write("loadavg", "0.52 0.58 0.59 2/1200 4711\n");
    load(number(1, R"("path": "meminfo", "line": "MemFree:", "word": 2)") + "," +
         number(2, R"("path": "meminfo", "line": 2, "word": 2)") + "," +
         number(3, R"("path": "loadavg", "word": 2, "scale": "100")") + "," +
         number(4, R"("path": "meminfo", "line": "Swap:", "word": 2)") + "," +
         number(5, R"("path": "meminfo", "line": 3, "word": 1)") + "," +
         number(6, R"("path": "loadavg", "word": 6)") + "," +
         text(7, R"("path": "meminfo", "line": "MemFree:", "word": 3)"));
    ASSERT_EQ(problems(), Lines{});
    EXPECT_EQ(read(1), "1234");
    EXPECT_EQ(read(2), "1234");
    EXPECT_EQ(read(3), "58");
    EXPECT_EQ(read(4), "no line begins with \"Swap:\"");
    EXPECT_EQ(read(5), "there is no line 3");
    EXPECT_EQ(read(6), "the line has no word 6");
    EXPECT_EQ(read(7), "'kB'");
}

TEST_F(File_driver_test, FilesOfTheKernelAreRead) {
    load(number(1, R"("path": "/proc/uptime", "word": 1)", R"("min": 0, "max": 2147483647)") + "," +
         number(2, R"("path": "/proc/meminfo", "line": "MemTotal:", "word": 2, "scale": "1/1024")",
                R"("min": 1, "max": 2147483647)"));
    ASSERT_EQ(problems(), Lines{});
    EXPECT_EQ(read(1).find_first_not_of("0123456789"), std::string::npos) << read(1);
    EXPECT_EQ(read(2).find_first_not_of("0123456789"), std::string::npos) << read(2);
}

// ---- numbers that the kernel gives

TEST_F(File_driver_test, AFolderIsFoundByTheNameInIt) {
    write("hwmon/hwmon0/name", "acpitz\n");
    write("hwmon/hwmon0/temp1_input", "1000");
    write("hwmon/hwmon10/name", "coretemp\n");
    write("hwmon/hwmon10/temp1_input", "2000");
    write("hwmon/hwmon/name", "coretemp\n");  // no number
    write("hwmon/hwmonx/name", "coretemp\n");
    load_number(R"("path": "hwmon/hwmon*/temp1_input", "name": "coretemp", "scale": "1/1000")");
    ASSERT_EQ(problems(), Lines{});
    EXPECT_EQ(read(), "2");
}

TEST_F(File_driver_test,
       ADeviceUnderAnotherNumberIsFoundAgainAndAnotherOneUnderItsNumberIsNotTaken) {
    write("hwmon/hwmon0/name", "coretemp\n");
    write("hwmon/hwmon0/temp1_input", "1");
    load_number(R"("path": "hwmon/hwmon*/temp1_input", "name": "coretemp")");
    EXPECT_EQ(read(), "1");
    std::filesystem::rename(m_folder.file("hwmon/hwmon0"), m_folder.file("hwmon/hwmon3"));
    write("hwmon/hwmon0/name", "nvme\n");
    write("hwmon/hwmon0/temp1_input", "99");
    EXPECT_EQ(read(), "1");
    std::filesystem::remove_all(m_folder.file("hwmon/hwmon3"));
    EXPECT_EQ(read(), "nothing is named \"coretemp\"");
}

// Laid out as /sys/class/leds and /sys/class/pwm are.
TEST_F(File_driver_test, LightsAndPulsesAreReadAndWritten) {
    write("leds/input12::capslock/brightness", "0\n");
    write("leds/input12::capslock/trigger", "[none] kbd-capslock timer\n");
    write("pwm/pwmchip4/npwm", "2\n");
    write("pwm/pwmchip4/pwm1/period", "20000000\n");
    write("pwm/pwmchip4/pwm1/duty_cycle", "1500000\n");
    load(number(1, R"("path": "leds/input*::capslock/brightness")") + "," +
         text(2, R"("path": "leds/input*::capslock/trigger", "word": 1)") + "," +
         number(3, R"("path": "pwm/pwmchip*/pwm1/duty_cycle", "scale": "1/1000")") + "," +
         number(4, R"("path": "pwm/pwmchip*/pwm1/period", "scale": "1/1000")"));
    ASSERT_EQ(problems(), Lines{});
    EXPECT_EQ(read(1), "0");
    EXPECT_EQ(read(2), "'[none]'");
    EXPECT_EQ(read(3), "1500");
    EXPECT_EQ(read(4), "20000");
    EXPECT_EQ(write_number(1, 1), Lines{});
    EXPECT_EQ(write_number(1700, 3), Lines{});
    EXPECT_EQ(content("leds/input12::capslock/brightness"), "1\n");
    EXPECT_EQ(content("pwm/pwmchip4/pwm1/duty_cycle"), "1700000\n");
    // A channel that is taken back, and one of another chip in its place.
    std::filesystem::remove_all(m_folder.file("pwm/pwmchip4/pwm1"));
    EXPECT_EQ(read(3), "no file matches");
    EXPECT_EQ(write_number(1800, 3), Lines{"files: 3: write refused: no file matches"});
    write("pwm/pwmchip6/pwm1/duty_cycle", "100000\n");
    EXPECT_EQ(read(3), "100");
}

TEST_F(File_driver_test, AValueThatTheKernelRefusesIsRefused) {
    load_number(R"("path": "/proc/self/oom_score_adj")");
    const std::string before = read();
    EXPECT_EQ(write_number(5000), Lines{"files: 1: write refused: Invalid argument"});
    EXPECT_EQ(read(), before);
}

TEST_F(File_driver_test, APathMayBeRelativeToTheWorkingFolder) {
    write("hwmon/hwmon3/name", "coretemp\n");
    write("hwmon/hwmon3/temp1_input", "7");
    const std::filesystem::path before = std::filesystem::current_path();
    std::filesystem::current_path(m_folder.path());
    m_text =
        R"({"device": {"drivers": {"files": {"driver": "file", "folder": "hwmon"}}, "parameters": [)" +
        number(1, R"("path": "hwmon*/temp1_input", "name": "coretemp")") + "]}}";
    m_document.emplace(m_source, m_text);
    Device_cache_settings settings;
    settings.has_threads = false;
    settings.clock = [clock = m_clock] { return clock->now(); };
    m_device.emplace(Json_value(m_document->root(), m_problems), m_problems,
                     Driver_table{&file_driver_row()}, "", m_others, settings);
    EXPECT_EQ(read(), "7");
    EXPECT_EQ(read(), "7");
    std::filesystem::current_path(before);
}

TEST_F(File_driver_test, TheNameMayBeInAnotherFileAndBesideAFileWithoutStar) {
    write("thermal/thermal_zone0/type", "x86_pkg_temp\n");
    write("thermal/thermal_zone0/temp", "5");
    load(
        number(
            1,
            R"("path": "thermal/thermal_zone*/temp", "name": "x86_pkg_temp", "name-file": "type")") +
        "," +
        number(2, R"("path": "thermal/thermal_zone0/temp", "name": "other", "name-file": "type")"));
    EXPECT_EQ(read(1), "5");
    EXPECT_EQ(read(2), "nothing is named \"other\"");
}

// A chip that is plugged in may get the number of one that has another one now.
TEST_F(File_driver_test, OfTwoChipsWithTheNameNoneIsGuessed) {
    write("hwmon/hwmon0/name", "nvme\n");
    write("hwmon/hwmon0/temp1_input", "1");
    load_number(R"("path": "hwmon/hwmon*/temp1_input", "name": "nvme")");
    EXPECT_EQ(read(), "1");
    std::filesystem::rename(m_folder.file("hwmon/hwmon0"), m_folder.file("hwmon/hwmon1"));
    write("hwmon/hwmon0/name", "nvme\n");
    write("hwmon/hwmon0/temp1_input", "99");
    EXPECT_EQ(read(), "2 files match");
}

TEST_F(File_driver_test, WhatIsNotTheOnlyOneIsNotGuessed) {
    write("hwmon/hwmon0/temp1_input", "1");
    load_number(R"("path": "hwmon/hwmon*/temp1_input")");
    EXPECT_EQ(read(), "1");
    write("hwmon/hwmon1/temp1_input", "2");
    EXPECT_EQ(read(), "2 files match: \"name\" selects one");
    std::filesystem::remove(m_folder.file("hwmon/hwmon0/temp1_input"));
    EXPECT_EQ(read(), "2");
    std::filesystem::remove_all(m_folder.file("hwmon"));
    EXPECT_EQ(read(), "no file matches");
}

// ---- faults

TEST_F(File_driver_test, AFileThatVanishesMakesItsValueOldAndComesBack) {
    write("value", "5");
    load_number(R"("path": "value")");
    EXPECT_EQ(read(), "5");
    std::filesystem::remove(m_folder.file("value"));
    EXPECT_EQ(read(), "No such file or directory");
    EXPECT_EQ(m_device->cache().state(1, 0)->freshness, Freshness::OLD);
    EXPECT_EQ(number_of(m_device->cache(), 1), 5);
    write("value", "6");
    EXPECT_EQ(read(), "6");
}

TEST_F(File_driver_test, AFileThatIsMissingMayHaveAValueOfItsOwn) {
    load(number(1, R"("path": "a", "absent": -5)") + "," +
         number(2, R"("path": "hw*/b", "name": "chip", "absent": 7)") + "," +
         text(3, R"("path": "c", "absent": "none")") + "," +
         number(4, R"("path": "hw*/d", "absent": 0)"));
    EXPECT_EQ(read(1), "-5");
    EXPECT_EQ(read(2), "7");
    EXPECT_EQ(read(3), "'none'");
    EXPECT_EQ(read(4), "0");
    m_device->check(m_problems);
    EXPECT_EQ(problems(), Lines{});
    write("a", "8");
    write("hw1/b", "9");
    write("hw1/name", "chip");
    EXPECT_EQ(read(1), "8");
    EXPECT_EQ(read(2), "9");
    write("a", "x");
    EXPECT_EQ(read(1), "not a number: \"x\"");
    write("hw1/d", "1");
    write("hw2/d", "2");
    EXPECT_EQ(read(4), "2 files match: \"name\" selects one");
}

// What is there and cannot be looked at must not be shown as if it were not.
TEST_F(File_driver_test, AFileThatCannotBeLookedAtIsNotMissing) {
    write("hw1/b", "9");
    write("hw1/name", "chip");
    write("secret/c1", "9");
    load(number(1, R"("path": "hw*/b", "name": "chip", "absent": 7)") + "," +
         number(2, R"("path": "secret/c*", "absent": 7)") + "," +
         number(3, R"("path": "secret/c1", "absent": 7)"));
    EXPECT_EQ(read(1), "9");
    EXPECT_EQ(read(2), "9");
    ASSERT_EQ(chmod(m_folder.file("hw1/name").c_str(), 0), 0);
    ASSERT_EQ(chmod(m_folder.file("secret").c_str(), 0), 0);
    {
        const Read_only_folder somebody_else(m_folder.path());
        EXPECT_EQ(read(1), "Permission denied");
        EXPECT_EQ(read(2), "Permission denied");
        EXPECT_EQ(read(3), "Permission denied");
    }
    chmod(m_folder.file("secret").c_str(), 0700);
}

TEST_F(File_driver_test, AValueForAMissingFileFitsItsParameter) {
    load(number(1, R"("path": "a", "absent": 5)", R"("min": 6, "max": 9)") + "," +
         text(2, R"("path": "c", "absent": "12345678901")"));
    EXPECT_EQ(problems(), (Lines{"expected a whole number from 6 to 9, found 5",
                                 "expected a text of 0 to 10 characters, found 11"}));
}

// What was read of a pipe is gone: of "1234" that is written in two pieces "34" would be shown.
TEST_F(File_driver_test, APipeIsNeitherWaitedForNorRead) {
    ASSERT_EQ(mkfifo(m_folder.file("pipe").c_str(), 0600), 0);
    load_number(R"("path": "pipe")");
    EXPECT_EQ(read(), "it is a pipe");
    {
        const Descriptor writer(open(m_folder.file("pipe").c_str(), O_RDWR | O_CLOEXEC));
        ASSERT_EQ(::write(writer.number(), "12", 2), 2);
        EXPECT_EQ(read(), "it is a pipe");
        ASSERT_EQ(::write(writer.number(), "34\n", 3), 3);
        EXPECT_EQ(read(), "it is a pipe");
        char left[8];
        EXPECT_EQ(::read(writer.number(), left, sizeof left), 5);
    }
    EXPECT_EQ(read(), "it is a pipe");
}

TEST_F(File_driver_test, APipeThatNobodyReadsRefusesAWrite) {
    ASSERT_EQ(mkfifo(m_folder.file("pipe").c_str(), 0600), 0);
    load_number(R"("path": "pipe")");
    EXPECT_EQ(write_number(5).front(), "files: 1: write refused: nobody reads the pipe");
}

TEST_F(File_driver_test, AFileThatMayNotBeReadOrWrittenSaysSo) {
    write("secret", "5");
    ASSERT_EQ(chmod(m_folder.file("secret").c_str(), 0), 0);
    load_number(R"("path": "secret")");
    const Read_only_folder somebody_else(m_folder.path());
    EXPECT_EQ(read(), "Permission denied");
    EXPECT_EQ(write_number(5), Lines{"files: 1: write refused: Permission denied"});
}

// The beginning of a process's memory is no memory.
TEST_F(File_driver_test, AnErrorOfTheDeviceIsItsReason) {
    load_number(R"("path": "/proc/self/mem")");
    EXPECT_EQ(read(), "Input/output error");
}

TEST_F(File_driver_test, AFolderIsNoFile) {
    write("folder/x", "");
    load_number(R"("path": "folder")");
    EXPECT_EQ(read(), "Is a directory");
    EXPECT_EQ(write_number(5), Lines{"files: 1: write refused: Is a directory"});
}

TEST_F(File_driver_test, GarbageIsNoNumber) {
    load_number(R"("path": "value")");
    const struct {
        std::string content;
        const char* reason;
    } cases[] = {{"", "the file is empty"},
                 {"\n", "the file is empty"},
                 {"abc", "not a number: \"abc\""},
                 {"12 34", "not a number: \"12 34\""},
                 {"12\n34\n", "not a number: \"12?34\""},
                 {std::string("1\0002", 3), "not a number: \"1?2\""},
                 {"\x1b[31m", "not a number: \"?[31m\""},
                 {"100001", "100001 is beyond -100000..100000"},
                 {"99999999999", "the number does not fit 32 bits: \"99999999999\""},
                 {std::string(100, '7'), "not a number: \"77777777777777777777...\""},
                 {std::string(60000, '7'), "not a number: \"77777777777777777777...\""},
                 {std::string(1000000, '7'), "the first line is too long"}};
    for (const auto& [content, reason] : cases) {
        SCOPED_TRACE(reason);
        write("value", content);
        EXPECT_EQ(read(), reason);
    }
}

TEST_F(File_driver_test, AFileWithoutEndIsReadOnlySoFar) {
    load_number(R"("path": "/dev/zero")");
    EXPECT_EQ(read(), "the first line is too long");
}

// ---- writes

TEST_F(File_driver_test, ANumberIsWrittenScaledAndReplacesWhatTheFileHeld) {
    write("temp", "36500000\n");
    write("gain", "1.25\n");
    load(number(1, R"("path": "temp", "scale": "1/1000")") + "," +
         number(2, R"("path": "gain", "scale": "100")"));
    EXPECT_EQ(write_number(21, 1), Lines{});
    EXPECT_EQ(content("temp"), "21000\n");
    EXPECT_EQ(write_number(-250, 2), Lines{});
    EXPECT_EQ(content("gain"), "-2.5\n");
}

TEST_F(File_driver_test, AnotherFileMayBeWritten) {
    write("actual", "1\n");
    write("wanted", "\n");
    load_number(R"("path": "actual", "write": "wanted")");
    EXPECT_EQ(write_number(7), Lines{});
    EXPECT_EQ(content("wanted"), "7\n");
    EXPECT_EQ(content("actual"), "1\n");
    EXPECT_EQ(read(), "1");
}

TEST_F(File_driver_test, APartOfALineIsOnlyRead) {
    write("loadavg", "1 2 3\n");
    load_number(R"("path": "loadavg", "word": 2)");
    EXPECT_EQ(write_number(7), Lines{"files: 1: write refused: a part of a line can only be read"});
    EXPECT_EQ(content("loadavg"), "1 2 3\n");
}

TEST_F(File_driver_test, AFileThatIsNotThereIsNotMade) {
    load_number(R"("path": "missing")");
    EXPECT_EQ(write_number(7), Lines{"files: 1: write refused: No such file or directory"});
    EXPECT_FALSE(std::filesystem::exists(m_folder.file("missing")));
}

TEST_F(File_driver_test, ADeviceThatIsFullRefusesAWrite) {
    load_number(R"("path": "/dev/full")");
    EXPECT_EQ(write_number(7), Lines{"files: 1: write refused: No space left on device"});
}

TEST_F(File_driver_test, ATextIsWrittenAsALine) {
    write("label", "old label\n");
    load(text(1, R"("path": "label")"));
    EXPECT_EQ(m_device->cache().Set(1, 0, "new", 3), 0);
    m_device->cache().step();
    EXPECT_EQ(content("label"), "new\n");
}

// ---- the menu file

TEST_F(File_driver_test, MistakesInASourceAreReported) {
    load(number(1, R"("path": "")") + "," + number(2, R"("path": "a/h*w*/x")") + "," +
         number(3, R"("path": "a/")") + "," + number(4, R"("name": "x")") + "," +
         number(5, R"("path": "a", "line": 0)") + "," + number(6, R"("path": "a", "word": 0)") +
         "," + number(7, R"("path": "a", "format": "hex")") + "," +
         number(8, R"("path": "a", "scale": "1:2")") + "," +
         number(9, R"("path": "a", "name-file": "type")") + "," +
         number(10, R"("path": "a", "name": "x", "name-file": "../x")") + "," +
         text(11, R"("path": "a", "scale": "2", "format": "decimal")") + "," +
         number(12, R"("paht": "a")"));
    EXPECT_EQ(
        problems(),
        (Lines{"expected a path of 1 to 1024 characters",
               "expected at most one \"*\" between two slashes, and 4 in all",
               "expected the path of a file, found that of a folder", "expected a member \"path\"",
               "expected a whole number from 1 to 100000, found 0",
               "expected a whole number from 1 to 1000, found 0",
               "expected \"decimal\" or \"hexadecimal\", found \"hex\"",
               "expected a scale such as \"1/1000\" or \"100\", found \"1:2\"",
               "\"name-file\" needs a \"name\"", "expected the name of a file, without a folder",
               "\"scale\" is for numbers", "\"format\" is for numbers",
               "expected a member \"path\"", "unknown member \"paht\"; did you mean \"path\"?"}));
}

TEST_F(File_driver_test, ThePathsOfADriverMayBeBelowAFolder) {
    write("class/leds/red/brightness", "9");
    m_text = R"({"device": {"drivers": {"leds": {"driver": "file", "folder": "class/leds"}},
                 "parameters": [)" +
             number(1, R"("path": "red/brightness")") + "]}}";
    m_document.emplace(m_source, m_text);
    Device_cache_settings settings;
    settings.has_threads = false;
    m_device.emplace(Json_value(m_document->root(), m_problems), m_problems,
                     Driver_table{&file_driver_row()}, m_folder.path(), m_others, settings);
    m_device->cache().read_all(0ms);
    m_device->cache().step();
    EXPECT_EQ(number_of(m_device->cache(), 1), 9);
}

TEST_F(File_driver_test, TheCheckFindsWhatCannotBeReadHereAndIsWrittenTwice) {
    write("value", "5");
    write("wanted", "5");
    load(number(1, R"("path": "value", "write": "wanted")") + "," +
         number(2, R"("path": "missing")") + "," +
         number(3, R"("path": "value", "write": "wanted")") + "," +
         number(4, R"("path": "hw*/x", "name": "chip")") + "," +
         number(5, R"("path": "value", "write": "nowhere/wanted")"));
    EXPECT_EQ(problems(), Lines{});
    m_device->check(m_problems);
    EXPECT_EQ(problems(), (Lines{"warning: cannot be read here: No such file or directory",
                                 "warning: \"1\" is written to the same file",
                                 "warning: cannot be read here: nothing is named \"chip\"",
                                 "warning: cannot be written here: No such file or directory"}));
}

}  // namespace
}  // namespace support
