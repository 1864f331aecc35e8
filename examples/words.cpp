#include "words.hpp"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <utility>

namespace example {

namespace {

// The frames of `stretch` that belong to segment s of n.
Stretch segment(const Stretch& stretch, int s, int n)
{
    return {stretch.first + stretch.length() * s / n, stretch.first + stretch.length() * (s + 1) / n};
}

// Rows from several tokens, one behind the other.
Matrix gather(const std::vector<std::pair<const Matrix*, Stretch>>& parts)
{
    int rows = 0;
    for (const auto& part : parts) {
        rows += part.second.length();
    }
    const int columns = parts.front().first->columns();
    Matrix all(rows, columns);
    int to = 0;
    for (const auto& [from, stretch] : parts) {
        for (int r = stretch.first; r < stretch.last; ++r) {
            check(lyrsCopy_32f(from->row(r), all.row(to++), columns), "lyrsCopy_32f");
        }
    }
    return all;
}

} // namespace

TwoWords findTwoWords(const Matrix& logEnergies)
{
    const int frames = logEnergies.rows();
    std::vector<float> loudness(static_cast<std::size_t>(frames));
    for (int f = 0; f < frames; ++f) {
        check(lyrsSum_32f(logEnergies.row(f), logEnergies.columns(), &loudness[static_cast<std::size_t>(f)], 1),
              "lyrsSum_32f");
        loudness[static_cast<std::size_t>(f)] /= static_cast<float>(logEnergies.columns());
    }
    float quietest = 0;
    float loudest = 0;
    check(lyrsMinMax_32f(loudness.data(), frames, &quietest, &loudest), "lyrsMinMax_32f");

    // Speech is where the mean log energy is above a quarter of its range.
    const float threshold = quietest + 0.25F * (loudest - quietest);
    const auto trimmed = [&](Stretch stretch) {
        while (stretch.length() > 1 && loudness[static_cast<std::size_t>(stretch.first)] < threshold) {
            ++stretch.first;
        }
        while (stretch.length() > 1 && loudness[static_cast<std::size_t>(stretch.last - 1)] < threshold) {
            --stretch.last;
        }
        return stretch;
    };
    const Stretch speech = trimmed({0, frames});

    // The second word begins at the quietest frame of the middle part.
    const int from = speech.first + speech.length() * 3 / 10;
    const int to = std::max(from + 1, speech.first + speech.length() * 7 / 10);
    const auto valley = std::min_element(loudness.begin() + from, loudness.begin() + to);
    const auto split = static_cast<int>(valley - loudness.begin());
    return {trimmed({speech.first, split}), trimmed({split, speech.last})};
}

std::vector<float> pooledVariance(const std::vector<Token>& tokens)
{
    std::vector<std::pair<const Matrix*, Stretch>> parts;
    parts.reserve(tokens.size());
    for (const Token& token : tokens) {
        parts.emplace_back(token.features, token.frames);
    }
    const Matrix all = gather(parts);
    std::vector<float> mean(static_cast<std::size_t>(all.columns()));
    std::vector<float> variance(mean.size());
    check(lyrsMeanVarColumn_32f_D2(all.row(0), all.rows(), all.step(), mean.data(), variance.data(), all.columns()),
          "lyrsMeanVarColumn_32f_D2");
    return variance;
}

WordModel::WordModel(std::string word, const std::vector<Token>& examples, const std::vector<float>& floor)
    : name(std::move(word)), means(segments, examples.front().features->columns()),
      inverseVariances(segments, examples.front().features->columns()), constants(segments)
{
    const Elem32s width = means.columns();
    std::vector<float> variance(static_cast<std::size_t>(width));
    for (int s = 0; s < segments; ++s) {
        std::vector<std::pair<const Matrix*, Stretch>> parts;
        parts.reserve(examples.size());
        for (const Token& token : examples) {
            parts.emplace_back(token.features, segment(token.frames, s, segments));
        }
        const Matrix frames = gather(parts);
        check(
            lyrsMeanVarColumn_32f_D2(frames.row(0), frames.rows(), frames.step(), means.row(s), variance.data(), width),
            "lyrsMeanVarColumn_32f_D2");
        check(lyrsMaxEvery_32f_I(floor.data(), variance.data(), width), "lyrsMaxEvery_32f_I");

        // gconst = ln weight - 1/2 (n ln 2 pi + sum of ln variance); the weights are those of three neighbours.
        float logDeterminant = 0;
        check(lyrsSumLn_32f(variance.data(), width, &logDeterminant), "lyrsSumLn_32f");
        constants[static_cast<std::size_t>(s)] =
            -std::log(3.0F) -
            0.5F * (static_cast<float>(width) * std::log(2 * std::numbers::pi_v<float>) + logDeterminant);
        check(lyrsSet_32f(1.0F, inverseVariances.row(s), width), "lyrsSet_32f");
        check(lyrsDiv_32f_I(variance.data(), inverseVariances.row(s), width), "lyrsDiv_32f_I");
    }
}

std::vector<float> WordModel::scoreFrames(const Token& token) const
{
    std::vector<float> scores;
    for (int s = 0; s < segments; ++s) {
        const int low = std::max(0, s - 1);
        const int height = std::min(segments, s + 2) - low;
        const Stretch part = segment(token.frames, s, segments);
        for (int f = part.first; f < part.last; ++f) {
            float score = 0;
            check(lyrsLogGaussMixture_32f_D2(token.features->row(f), means.row(low), inverseVariances.row(low), height,
                                             means.step(), means.columns(), constants.data() + low, &score),
                  "lyrsLogGaussMixture_32f_D2");
            scores.push_back(score);
        }
    }
    return scores;
}

} // namespace example
