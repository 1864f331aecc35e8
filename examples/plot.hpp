// A picture of a recording: its mel energies over time, and below them curves over the same time.
#pragma once

#include "front_end.hpp"

#include <string>
#include <vector>

namespace example {

struct Curve
{
    std::string label;
    int firstFrame = 0;
    std::vector<float> values; // one for each frame from firstFrame on
    bool emphasised = false;
};

struct Picture
{
    std::string title;
    const Matrix* logEnergies = nullptr;
    std::vector<float> centres; // of the filters, in hertz
    double secondsPerFrame = 0.01;
    std::string curvesTitle;
    std::vector<Curve> curves;
    std::vector<int> marks; // frames at which a line crosses both panels
};

// Writes a PNG. Returns what is wrong, or an empty string.
std::string drawPicture(const Picture& picture, const std::string& path);

} // namespace example
