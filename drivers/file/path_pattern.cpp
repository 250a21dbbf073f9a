#include "path_pattern.h"

#include <dirent.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <memory>
#include <optional>
#include <utility>

#include <frontpanel_base/numbers.h>

namespace frontpanel {
namespace {

constexpr std::size_t MOST_SCANNED = 10000;  // files of a folder
constexpr int LARGEST_NUMBER = 999999999;

std::vector<std::string> parts_of(const std::string& given) {
    const bool has_start = given.front() == '/' || given.compare(0, 2, "./") == 0;
    const std::string path = has_start ? given : "./" + given;
    std::vector<std::string> parts;
    std::size_t begin = 0;
    for (std::size_t end = path.find('/'); end != std::string::npos; end = path.find('/', begin)) {
        parts.push_back(path.substr(begin, end - begin));
        begin = end + 1;
    }
    parts.push_back(path.substr(begin));
    return parts;
}

std::string joined(const std::vector<std::string>& parts, std::size_t count) {
    std::string path;
    for (std::size_t i = 0; i < count; ++i) {
        path += (i == 0 ? "" : "/") + parts[i];
    }
    return path;
}

std::string below(std::string folder, const std::string& name) {
    return folder.append("/").append(name);
}

std::string trimmed(const std::string& text) {
    const std::size_t end = text.find_last_not_of(" \t\r\n");
    return text.substr(0, end == std::string::npos ? 0 : end + 1);
}

// The number that stands for the star.
std::optional<int> number_in(const std::string& name, const std::string& pattern) {
    const std::size_t star = pattern.find('*');
    const std::string before = pattern.substr(0, star);
    const std::string behind = pattern.substr(star + 1);
    if (name.size() <= before.size() + behind.size() ||
        name.compare(0, before.size(), before) != 0 ||
        name.compare(name.size() - behind.size(), behind.size(), behind) != 0) {
        return std::nullopt;
    }
    return parse_number(name.substr(before.size(), name.size() - before.size() - behind.size()), 0,
                        LARGEST_NUMBER);
}

// Notes the reason in `errno` why a file could not be examined; none for a file that does not exist.
void note_doubt(std::string& doubt) {
    if (errno != ENOENT && errno != ENOTDIR) {
        doubt = std::strerror(errno);
    }
}

// The names in a folder that a part with a star stands for, by their numbers.
std::vector<std::string> names_like(const std::string& folder, const std::string& pattern,
                                    std::string& doubt) {
    std::vector<std::pair<int, std::string>> found;
    const std::unique_ptr<DIR, int (*)(DIR*)> open_folder(
        opendir(folder.empty() ? "." : folder.c_str()), closedir);
    if (open_folder == nullptr) {
        note_doubt(doubt);
    }
    for (std::size_t scanned = 0; open_folder != nullptr && scanned < MOST_SCANNED; ++scanned) {
        errno = 0;
        const dirent* const entry = readdir(open_folder.get());
        if (entry == nullptr) {
            if (errno != 0) {
                note_doubt(doubt);
            }
            break;
        }
        if (const auto number = number_in(entry->d_name, pattern)) {
            found.emplace_back(*number, entry->d_name);
        }
    }
    std::sort(found.begin(), found.end());
    std::vector<std::string> names;
    for (std::size_t i = 0; i < std::min(found.size(), Path_pattern::MOST_FOUND); ++i) {
        names.push_back(found[i].second);
    }
    return names;
}

}  // namespace

std::string Path_pattern::mistake_in(const std::string& path) {
    if (path.empty() || path.size() > LONGEST) {
        return "expected a path of 1 to " + std::to_string(LONGEST) + " characters";
    }
    const std::vector<std::string> parts = parts_of(path);
    const auto has_two = [](const std::string& part) {
        return std::count(part.begin(), part.end(), '*') > 1;
    };
    if (std::any_of(parts.begin(), parts.end(), has_two) ||
        static_cast<std::size_t>(std::count(path.begin(), path.end(), '*')) > MOST_STARS) {
        return "expected at most one \"*\" between two slashes, and " + std::to_string(MOST_STARS) +
               " in all";
    }
    return parts.back().empty() ? "expected the path of a file, found that of a folder" : "";
}

Path_pattern::Path_pattern(const std::string& path, std::string name, std::string name_file)
    : m_parts(parts_of(path)),
      m_last_star(m_parts.size() - 2),
      m_has_star(false),
      m_name(std::move(name)),
      m_name_file(std::move(name_file)) {
    for (std::size_t i = 0; i < m_parts.size(); ++i) {
        if (m_parts[i].find('*') != std::string::npos) {
            m_last_star = std::min(i, m_parts.size() - 2);
            m_has_star = true;
        }
    }
}

bool Path_pattern::has_name(const std::string& path, File_reader& reader,
                            std::string& doubt) const {
    if (m_name.empty()) {
        if (access(path.c_str(), F_OK) == 0) {
            return true;
        }
        note_doubt(doubt);
        return false;
    }
    const std::string folder = joined(parts_of(path), m_last_star + 1);
    const File_reader::Content& name = reader.read(folder + "/" + m_name_file);
    if (!name.failure.empty() && !name.is_missing) {
        doubt = name.failure;
    }
    return trimmed(name.text) == m_name;
}

std::vector<std::string> Path_pattern::expand(std::string& doubt) const {
    std::vector<std::string> paths{m_parts[0]};
    for (std::size_t i = 1; i < m_parts.size(); ++i) {
        std::vector<std::string> longer;
        for (const std::string& path : paths) {
            if (m_parts[i].find('*') == std::string::npos) {
                longer.push_back(below(path, m_parts[i]));
                continue;
            }
            for (const std::string& name : names_like(path + "/", m_parts[i], doubt)) {
                longer.push_back(below(path, name));
            }
        }
        longer.resize(std::min(longer.size(), MOST_FOUND));
        paths = std::move(longer);
    }
    return paths;
}

Path_pattern::Found Path_pattern::find(File_reader& reader) const {
    if (!m_has_star && m_name.empty()) {
        return {joined(m_parts, m_parts.size()), ""};
    }
    std::string doubt;
    std::vector<std::string> found;
    for (std::string& path : expand(doubt)) {
        if (has_name(path, reader, doubt)) {
            found.push_back(std::move(path));
        }
    }
    if (found.size() == 1) {
        return {found.front(), ""};
    }
    if (!found.empty()) {
        return {"", std::to_string(found.size()) + " files match" +
                        (m_name.empty() ? ": \"name\" selects one" : "")};
    }
    if (!doubt.empty()) {
        return {"", doubt};
    }
    return {"", m_name.empty() ? "no file matches" : "nothing is named \"" + m_name + "\"", true};
}

}  // namespace frontpanel
