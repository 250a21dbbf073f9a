// A picture of the panel's front, for documents and reports of problems.
#ifndef FRONTPANEL_DISPLAYS_PICTURE_H
#define FRONTPANEL_DISPLAYS_PICTURE_H

#include <optional>
#include <string>

#include <frontpanel_display/display.h>

namespace frontpanel {

// The front with its display, LEDs, encoder and buttons as an SVG document. The same frame makes the same text.
std::string svg_of(const Frame& frame);

// Keeps the last frame that was shown, for a picture of it.
class Picture_display : public Display {
public:
    // The picture goes to `file`.
    explicit Picture_display(std::string file);

    void show(const Frame& frame) override;
    // Writes the picture of the last frame, if there was one. Input_error, with the file unchanged, when that fails.
    void finish() const;

private:
    std::string m_file;
    std::optional<Frame> m_frame;
};

}  // namespace frontpanel

#endif
