#include "wav.hpp"

#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <sndfile.h>

namespace example {

std::optional<Recording> readRecording(const std::string& path, std::string& error)
{
    std::error_code ignored;
    if (std::filesystem::is_directory(path, ignored)) {
        error = path + ": is a folder";
        return std::nullopt;
    }
    // The decoder's own words for a file that cannot be opened do not tell why.
    std::FILE* const readable = std::fopen(path.c_str(), "rb");
    if (readable == nullptr) {
        error = path + ": " + std::strerror(errno);
        return std::nullopt;
    }
    std::fclose(readable);

    SF_INFO info{};
    SNDFILE* const file = sf_open(path.c_str(), SFM_READ, &info);
    if (file == nullptr) {
        std::string reason = sf_strerror(nullptr);
        while (!reason.empty() && (reason.back() == '\n' || reason.back() == '.')) {
            reason.pop_back();
        }
        error = path + ": " + reason;
        return std::nullopt;
    }
    const auto channels = static_cast<std::size_t>(info.channels);
    std::vector<float> interleaved(static_cast<std::size_t>(info.frames) * channels);
    const sf_count_t read = sf_readf_float(file, interleaved.data(), info.frames);
    sf_close(file);
    if (read <= 0) {
        error = path + ": holds no samples";
        return std::nullopt;
    }

    Recording recording;
    recording.path = path;
    recording.name = std::filesystem::path(path).stem().string();
    recording.rate = static_cast<float>(info.samplerate);
    recording.samples.resize(static_cast<std::size_t>(read));
    for (std::size_t i = 0; i < recording.samples.size(); ++i) {
        float sum = 0;
        for (std::size_t c = 0; c < channels; ++c) {
            sum += interleaved[i * channels + c];
        }
        recording.samples[i] = 32768.0F * sum / static_cast<float>(channels);
        if (!std::isfinite(recording.samples[i])) {
            error = path + ": holds samples that are not numbers";
            return std::nullopt;
        }
    }
    return recording;
}

} // namespace example
