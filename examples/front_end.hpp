// From samples to feature vectors, with the library doing the arithmetic.
#pragma once

#include "lyrsr.h"

#include <chrono>
#include <map>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

namespace example {

// A status that is an error ends the example with the name of the call.
class Failure : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

void check(Status status, const char* call);

// Rows of features, one behind the other, at 32-byte boundaries so that the aligned kernels serve.
class Matrix
{
public:
    Matrix() = default;
    // Throws Failure if there is no memory, or if an int cannot count the elements.
    Matrix(int rows, int columns);

    [[nodiscard]] int rows() const { return height; }
    [[nodiscard]] int columns() const { return width; }
    [[nodiscard]] int step() const { return stride; }
    [[nodiscard]] float* row(int r) { return data.get() + static_cast<std::ptrdiff_t>(r) * stride; }
    [[nodiscard]] const float* row(int r) const { return data.get() + static_cast<std::ptrdiff_t>(r) * stride; }

private:
    struct Release
    {
        void operator()(float* p) const { lyrsFree(p); }
    };

    int height = 0;
    int width = 0;
    int stride = 0;
    std::unique_ptr<float, Release> data;
};

enum class Window
{
    None,
    Hamming,
    Hann
};

enum class LogBase
{
    E,
    Ten,
    Decibel
};

struct Options
{
    double windowMs = 25;
    double shiftMs = 10;
    float preemphasis = 0.97F;
    Window window = Window::Hamming;
    int filters = 26;
    float lowHz = 64;
    float highHz = 0; // 0: half the sampling rate
    float melMul = 1127.01F;
    float melDiv = 700;
    bool binShape = false; // triangles straight in bins, not in mel
    bool power = false;    // the bank sums powers, not magnitudes
    LogBase logBase = LogBase::E;
    float energyFloor = 1;
    int cepstra = 12;
    bool zeroth = true;    // the zeroth cepstrum comes last
    int lifter = 22;       // 0: no lifter
    bool scaledDct = true; // by sqrt(2 / filters)
    int derivatives = 2;   // 0, 1 or 2
    int deltaWindow = 2;   // frames each way: 1 or 2
    bool removeMean = false;
};

// Time spent in each stage, in seconds.
class StageTimes
{
public:
    template <class Work>
    void measure(const std::string& stage, Work&& work)
    {
        const auto start = std::chrono::steady_clock::now();
        work();
        add(stage, std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count());
    }
    void add(const std::string& stage, double seconds);

    struct Entry
    {
        std::string stage;
        double seconds;
    };
    [[nodiscard]] const std::vector<Entry>& entries() const { return stages; }
    [[nodiscard]] double total() const;

private:
    std::vector<Entry> stages;
};

struct Features
{
    Matrix energies; // logarithms of the mel energies, a row for each frame
    Matrix vectors;  // cepstra and their derivatives
};

// Frames, bank and DCT for one sampling rate; used for any number of recordings.
class FrontEnd
{
public:
    FrontEnd(const Options& options, float rate);
    ~FrontEnd();
    FrontEnd(const FrontEnd&) = delete;
    FrontEnd& operator=(const FrontEnd&) = delete;

    // Throws Failure for a recording that is too short or too loud for single precision.
    Features compute(const std::vector<float>& samples, StageTimes& times) const;

    [[nodiscard]] int frameShift() const { return shift; }
    [[nodiscard]] int staticWidth() const { return statics; }
    // Centre frequencies of the filters in hertz.
    [[nodiscard]] std::vector<float> centres() const;

private:
    void energiesOfFrame(float* frame, float* energies) const;

    Options options;
    float rate;
    int length = 0; // samples of a frame
    int shift = 0;
    int fftLength = 0;
    int statics = 0; // cepstra of a frame
    std::vector<float> window;
    std::vector<float> floor;
    FBankState_32f* bank = nullptr;
    FFTSpec_R_32f* spectrum = nullptr;
    DCTLifterState_32f* dct = nullptr;
};

} // namespace example
