#pragma once

#include "IMachineDialect.h"

// G-code: absolute coordinates, G0 for travel, G1 with the drawing feed for strokes.
namespace LibStrokeset::Formats::Machine {

class CGcodeDialect : public IMachineDialect {
public:
    /// `units` is "mm", "in" or empty; `drawFeed` is already written in machine units.
    CGcodeDialect(std::string units, std::string drawFeed);
    void begin(std::string& out) override;
    void travelTo(std::string& out, const std::string& x, const std::string& y) override;
    void startStroke(std::string& out) override;
    void drawTo(std::string& out, const std::string& x, const std::string& y) override;
    void touch(std::string& out) override;
    void endStroke(std::string& out) override;

private:
    std::string m_units, m_drawFeed;
    /// The feed is modal: written with the first G1 of each stroke, so that a pen command
    /// that changes it in between cannot leave the wrong one in place.
    bool m_feedWritten = false;
};

} // namespace LibStrokeset::Formats::Machine
