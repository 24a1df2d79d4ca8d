#pragma once

#include <string>

// How one machine language spells the few things a drawing needs. The writer decides what
// happens and in which order; a dialect only writes it.
namespace LibStrokeset::Formats::Machine {

class IMachineDialect {
public:
    virtual ~IMachineDialect() = default;
    /// The start of the file, after the profile's header.
    virtual void begin(std::string& out) = 0;
    /// A pen-up move to the point (numbers already written in machine units).
    virtual void travelTo(std::string& out, const std::string& x, const std::string& y) = 0;
    /// After the profile's pen-down lines: the pen touches at the point it travelled to.
    virtual void startStroke(std::string& out) = 0;
    /// A pen-down move to the point.
    virtual void drawTo(std::string& out, const std::string& x, const std::string& y) = 0;
    /// A stroke of no length: the pen touches where it is.
    virtual void touch(std::string& out) = 0;
    /// Before the profile's pen-up lines.
    virtual void endStroke(std::string& out) = 0;
};

} // namespace LibStrokeset::Formats::Machine
