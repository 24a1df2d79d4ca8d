#pragma once

#include <cstddef>

#include "IMachineDialect.h"

// HPGL: PU to travel, PD with the stroke's points (a few per command, as small plotter
// buffers want), PD without points for a dot.
namespace LibStrokeset::Formats::Machine {

class CHpglDialect : public IMachineDialect {
public:
    void begin(std::string& out) override;
    void travelTo(std::string& out, const std::string& x, const std::string& y) override;
    void startStroke(std::string& out) override;
    void drawTo(std::string& out, const std::string& x, const std::string& y) override;
    void touch(std::string& out) override;
    void endStroke(std::string& out) override;

private:
    void flush(std::string& out);

    static constexpr std::size_t kPointsPerCommand = 32;
    std::string m_points;
    std::size_t m_pointCount = 0;
};

} // namespace LibStrokeset::Formats::Machine
