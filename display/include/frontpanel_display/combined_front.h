// Combines several displays and inputs in one front for the main loop, which waits for a single front.
#ifndef FRONTPANEL_DISPLAY_COMBINED_FRONT_H
#define FRONTPANEL_DISPLAY_COMBINED_FRONT_H

#include <memory>
#include <set>
#include <vector>

#include <frontpanel_base/descriptor.h>
#include <frontpanel_display/front.h>

namespace frontpanel {

class Combined_front : public Front {
public:
    // std::system_error when the descriptor that waits for all of them cannot be had.
    Combined_front(std::vector<std::unique_ptr<Front>> fronts,
                   std::vector<std::unique_ptr<Input>> inputs);

    // On all fronts.
    void show(const Frame& frame) override;
    // The next event of the fronts and the inputs, asked in turn, so that a busy one does not hold back the others.
    std::optional<Front_event> next(Time now) override;
    // Becomes ready when one of the parts' sources is.
    pollfd source() const override;
    // The earliest of the parts.
    Time due() const override;

private:
    void watch(const pollfd& source) const;

    std::vector<std::unique_ptr<Front>> m_fronts;
    std::vector<std::unique_ptr<Input>> m_inputs;
    std::vector<Input*> m_parts;  // all of them
    Descriptor m_waiting;
    mutable std::set<int> m_watched;
    size_t m_turn = 0;  // the part that is asked first
};

}  // namespace frontpanel

#endif
