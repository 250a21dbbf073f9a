// What is made of a JSON text, as of a part of a menu file.
#ifndef FRONTPANEL_DATA_TESTS_SUPPORT_MADE_OF_JSON_H
#define FRONTPANEL_DATA_TESTS_SUPPORT_MADE_OF_JSON_H

#include <string>
#include <vector>

#include <frontpanel_base/json_document.h>
#include <frontpanel_base/json_value.h>

namespace support {

// "menu.json:1:2: expected ..." without its place.
inline std::string without_place(const std::string& problem) {
    return problem.substr(problem.find(": ") + 2);
}

// Errors, then warnings, without their places.
inline std::vector<std::string> without_places(const frontpanel::Problems& problems) {
    std::vector<std::string> lines;
    for (const auto& some : {problems.errors(), problems.warnings()}) {
        for (const std::string& line : some) {
            lines.push_back(without_place(line));
        }
    }
    return lines;
}

template <typename Result>
struct Made_of_json {
    // `make` takes a Json_value, and returns a Result.
    template <typename Make>
    Made_of_json(const std::string& json, Make make) {
        const frontpanel::Source file{"menu.json", 0};
        const frontpanel::Json_document document(file, json);
        frontpanel::Problems problems;
        problems.attempt([&] { result = make(frontpanel::Json_value(document.root(), problems)); });
        for (const std::string& line : problems.errors()) {
            error += without_place(line);
        }
    }

    Result result{};
    std::string error;  // without its place; several follow each other
};

}  // namespace support

#endif
