// The mistakes of an input file, collected so that all are reported at once.
#ifndef FRONTPANEL_BASE_PROBLEMS_H
#define FRONTPANEL_BASE_PROBLEMS_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include <frontpanel_base/input_error.h>

namespace frontpanel {

// A file that was read. Its number identifies the file and orders the mistakes.
struct Source {
    std::string name;
    size_t number;
};

// A place in a file. Lines and columns count from 1, columns in bytes.
struct Place {
    const Source* source;
    uint32_t line;
    uint32_t column;
    // For a value of a template or repetition: the copy, such as "n = 3"; null elsewhere.
    const std::string* copy;
};

// "menu.json:3:17: TEXT", with the copy in parentheses behind it.
std::string line_of(const Place& place, const std::string& text);

// Thrown when work on one part of a file cannot continue; `what()` is the whole line.
class Placed_error : public Input_error {
public:
    Placed_error(const Place& place, const std::string& text)
        : Input_error(line_of(place, text)), m_place(place) {}

    const Place& place() const { return m_place; }

private:
    Place m_place;
};

// Thrown to end work whose error has already been reported. Never leaves the loader.
struct Told_already {};

// Thrown to end all work on a file. Never leaves the outermost attempt.
struct All_ended {};

// Everything that is wrong with a file; `what()` is the first line.
class Input_errors : public Input_error {
public:
    explicit Input_errors(std::vector<std::string> lines)
        : Input_error(lines.front()), m_lines(std::move(lines)) {}

    const std::vector<std::string>& lines() const { return m_lines; }

private:
    std::vector<std::string> m_lines;
};

class Problems {
public:
    static constexpr size_t MOST_LINES = 200;  // of errors, and of warnings
    // More ends the outermost attempt: a file with that many mistakes is wrong as a whole.
    static constexpr size_t MOST_ERRORS = 10000;

    void report(const Place& place, const std::string& text);
    void warn(const Place& place, const std::string& text);
    // Reports an error after which further work is useless, and ends the outermost attempt. Requires: inside an
    // attempt.
    [[noreturn]] void end(const Place& place, const std::string& text);

    // Does `work`, and reports an error that it throws. Returns whether it finished.
    template <typename Work>
    bool attempt(Work work) {
        const Inside inside(m_depth);
        try {
            work();
            return true;
        } catch (const Placed_error& error) {
            return add_caught(error);
        } catch (const Told_already&) {
            return false;
        } catch (const All_ended&) {
            return leave();
        }
    }
    // What `read` returns, or `otherwise` when it throws an error, which is reported.
    template <typename Read, typename Value>
    Value value_or(Read read, Value otherwise) {
        attempt([&] { otherwise = read(); });
        return otherwise;
    }

    size_t error_count() const { return m_error_count; }
    // Each line once, in the order of the files.
    std::vector<std::string> errors() const { return lines(m_errors); }
    std::vector<std::string> warnings() const { return lines(m_warnings); }

private:
    struct Problem {
        Place place;
        std::string line;
    };
    // One attempt inside others.
    class Inside {
    public:
        explicit Inside(size_t& depth) : m_depth(depth) { ++m_depth; }
        ~Inside() { --m_depth; }
        Inside(const Inside&) = delete;
        Inside& operator=(const Inside&) = delete;

    private:
        size_t& m_depth;
    };
    // Both return false, or throw All_ended on to an outer attempt.
    bool add_caught(const Placed_error& error);
    bool leave() const;
    void add_error(const Place& place, const std::string& line);
    static std::vector<std::string> lines(const std::vector<Problem>& problems);

    size_t m_depth = 0;
    size_t m_error_count = 0;  // those that are not kept included
    std::vector<Problem> m_errors;
    std::vector<Problem> m_warnings;
};

}  // namespace frontpanel

#endif
