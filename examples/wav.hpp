// Recordings from files.
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace example {

struct Recording
{
    std::string path;
    std::string name;           // the file's name without folder and ending
    float rate = 0;             // samples per second
    std::vector<float> samples; // 16-bit scale: -32768 to 32767; several channels are averaged

    [[nodiscard]] double seconds() const { return static_cast<double>(samples.size()) / static_cast<double>(rate); }
};

// Reads a recording, or says in one line what is wrong with it.
std::optional<Recording> readRecording(const std::string& path, std::string& error);

} // namespace example
