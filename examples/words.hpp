// Words as rows of diagonal Gaussians: uniform segments of a word, a Gaussian for each, and the mixture of neighbouring
// segments as the score.
#pragma once

#include "front_end.hpp"

#include <string>
#include <vector>

namespace example {

// A stretch of frames of a recording: [first, last).
struct Stretch
{
    int first = 0;
    int last = 0;

    [[nodiscard]] int length() const { return last - first; }
};

// The spoken part of a recording of two words and where the second begins, found by the energies alone.
struct TwoWords
{
    Stretch first;
    Stretch second;
};
TwoWords findTwoWords(const Matrix& logEnergies);

// One example of a word.
struct Token
{
    const Matrix* features;
    Stretch frames;
};

class WordModel
{
public:
    static constexpr int segments = 5;

    // Means, inverse variances and constants of every segment, from the frames that uniform division gives it in all
    // examples. Variances are not taken below `floor`, element by element.
    WordModel(std::string word, const std::vector<Token>& examples, const std::vector<float>& floor);

    [[nodiscard]] const std::string& word() const { return name; }

    // The log-likelihood of every frame of the stretch, each under the mixture of the segments around its place in the
    // word.
    [[nodiscard]] std::vector<float> scoreFrames(const Token& token) const;

private:
    std::string name;
    Matrix means;
    Matrix inverseVariances;
    std::vector<float> constants;
};

// The variance of every feature over all the tokens.
std::vector<float> pooledVariance(const std::vector<Token>& tokens);

} // namespace example
