#pragma once

#include "GUI/Element.h"

#include <string>
#include <vector>

namespace pulsara::test {

// An element that writes what happens to it into a shared log and claims its input.
class RecordingElement : public Element {
public:
    RecordingElement(std::string name, std::vector<std::string>& log, ElemRect rect) : name_(std::move(name)), log_(log) { layout(rect); }

    int paint(DeviceContext* dc, uint32_t mode) override { record(".paint" + std::to_string(mode)); return Element::paint(dc, mode); }
    int stylusDown(int button, int32_t x, int32_t y) override
    {
        return record(".down" + std::to_string(button) + "@" + std::to_string(x) + "," + std::to_string(y));
    }
    int stylusUp(int button, int32_t, int32_t) override { return record(".up" + std::to_string(button)); }
    int stylusMove(int32_t, int32_t) override { return record(".move"); }

private:
    int record(const std::string& what) { log_.push_back(name_ + what); return 1; }
    std::string name_;
    std::vector<std::string>& log_;
};

} // namespace pulsara::test
