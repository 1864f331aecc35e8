// features: a WAV recording in, a feature matrix out.

#include "front_end.hpp"
#include "wav.hpp"

#include <bit>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <getopt.h>
#include <iostream>
#include <limits>
#include <string>

namespace {

const char* const help = R"(usage: features [options] RECORDING.wav

Writes one row of features for each frame: liftered cepstra, the zeroth last, then their first and second derivatives.
A recording may have any rate and number of channels, which are averaged, and any format that libsndfile reads.

frames
  --window-length MS   25         --frame-shift MS  10
  --window KIND        hamming    (hamming, hann, none)
  --preemphasis A      0.97       x[n] - A x[n-1], the first sample being its own predecessor
mel filter bank
  --num-filters N      26         --low-freq HZ     64      --high-freq HZ    0 (half the sampling rate)
  --mel-mul M          1127.01    --mel-div HZ      700     mel(f) = M ln(1 + f / HZ)
  --shape KIND         mel        (mel: triangles straight in mel; bin: straight in FFT bins)
  --spectrum KIND      magnitude  (magnitude, power)
  --log BASE           e          (e, 10, db)               --energy-floor E  1
cepstra
  --num-ceps N         12         --no-c0                   without the zeroth cepstrum
  --lifter L           22         1 + L/2 sin(pi i / L); 0: none
  --dct-scale KIND     htk        (htk: sqrt(2/N), N filters; none)
derivatives
  --derivatives N      2          (0, 1, 2)                 --delta-window N  2 (1, 2 frames each way)
output
  --remove-mean                   subtract the mean of each column over the recording
  --format KIND        text       (text, npy)               --output FILE     - (standard output)

Which settings reproduce which convention
  pre-emphasis      over the whole recording, before it is cut into frames; in the HTK Book it starts anew in each frame.
  window            symmetric, its period is one less than its length; some tools have a period of the whole length.
  mel formula       2595 log10(1 + f/700) is 1127.01 ln(1 + f/700): the default. The factor cancels between the two conversions, the
                    corner of 700 Hz does not: some tools use 1000 Hz (--mel-div 1000).
  spectrum          the HTK Book's default and ETSI ES 201 108 sum magnitudes (default); most Python tools sum powers (--spectrum power).
  log base          natural in the HTK Book and ES 201 108 (default); base 10 in Slaney's Auditory Toolbox (--log 10); --log db gives
                    10 log10, which some Python tools take of powers.
  floor             samples are on the 16-bit scale; tools that read them as -1 to 1 see energies smaller by 32768, or by its square
                    where they sum powers.
  DCT scale         sqrt(2/N) as in the HTK Book (default), the zeroth included, which an orthonormal transform scales by sqrt(1/N);
                    ES 201 108 has no scale (--dct-scale none).
  lifter            22 in the HTK Book (default); ES 201 108 and many Python tools have none (--lifter 0).
  delta window      2 frames each way, sum of t (x[r+t] - x[r-t]) over 2 sum of t^2 (default); --delta-window 1 is the plain difference
                    over 2. The first and the last frame stand in for those outside.
  ES 201 108        --num-filters 23 --shape bin --energy-floor 1.93e-22 --dct-scale none --lifter 0 --derivatives 0 (at 8 and 16 kHz;
                    without its offset compensation and log energy)
)";

[[noreturn]] void fail(const std::string& message)
{
    std::cerr << "features: " << message << '\n';
    std::exit(1);
}

template <class T>
T number(const char* option, const char* text, T least = std::numeric_limits<T>::lowest())
{
    T value{};
    const char* const end = text + std::strlen(text);
    const auto [stop, error] = std::from_chars(text, end, value);
    if (error == std::errc::result_out_of_range) {
        fail(std::string("--") + option + ": out of range: " + text);
    }
    if (error != std::errc{} || stop != end || !std::isfinite(static_cast<double>(value))) {
        fail(std::string("--") + option + ": not a number: " + text);
    }
    if (value < least) {
        fail(std::string("--") + option + ": too small: " + text);
    }
    return value;
}

constexpr float positive = std::numeric_limits<float>::min();

// The place of `text` among the words that an option takes.
int choice(const char* option, const char* text, std::initializer_list<const char*> words)
{
    int index = 0;
    for (const char* word : words) {
        if (std::strcmp(word, text) == 0) {
            return index;
        }
        ++index;
    }
    fail(std::string("--") + option + ": unknown: " + text);
}

// NumPy's format, version 1.0: a header padded to 64 bytes, then the rows in little-endian singles.
void writeNpy(std::ostream& out, const example::Matrix& m)
{
    static_assert(std::endian::native == std::endian::little);
    std::string header = "{'descr': '<f4', 'fortran_order': False, 'shape': (" + std::to_string(m.rows()) + ", " +
                         std::to_string(m.columns()) + "), }";
    header.append(63 - (10 + header.size()) % 64, ' ');
    header += '\n';
    out.write("\x93NUMPY\x01\x00", 8);
    const auto size = static_cast<std::uint16_t>(header.size());
    out.put(static_cast<char>(size & 0xFF));
    out.put(static_cast<char>(size >> 8));
    out << header;
    for (int r = 0; r < m.rows(); ++r) {
        out.write(reinterpret_cast<const char*>(m.row(r)), m.columns() * static_cast<std::streamsize>(sizeof(float)));
    }
}

void writeText(std::ostream& out, const example::Matrix& m)
{
    char text[32];
    for (int r = 0; r < m.rows(); ++r) {
        for (int c = 0; c < m.columns(); ++c) {
            std::snprintf(text, sizeof text, "%s%.6g", c == 0 ? "" : " ", static_cast<double>(m.row(r)[c]));
            out << text;
        }
        out << '\n';
    }
}

} // namespace

int main(int argc, char** argv)
{
    example::Options options;
    bool npy = false;
    std::string output = "-";

    const option known[] = {
        {"window-length", 1, nullptr, 'l'}, {"frame-shift", 1, nullptr, 's'}, {"window", 1, nullptr, 'w'},
        {"preemphasis", 1, nullptr, 'p'},   {"num-filters", 1, nullptr, 'n'}, {"low-freq", 1, nullptr, 'a'},
        {"high-freq", 1, nullptr, 'b'},     {"mel-mul", 1, nullptr, 'm'},     {"mel-div", 1, nullptr, 'd'},
        {"shape", 1, nullptr, 'S'},         {"spectrum", 1, nullptr, 'P'},    {"log", 1, nullptr, 'L'},
        {"energy-floor", 1, nullptr, 'e'},  {"num-ceps", 1, nullptr, 'c'},    {"no-c0", 0, nullptr, 'z'},
        {"lifter", 1, nullptr, 'i'},        {"dct-scale", 1, nullptr, 'D'},   {"derivatives", 1, nullptr, 'v'},
        {"delta-window", 1, nullptr, 'W'},  {"remove-mean", 0, nullptr, 'r'}, {"format", 1, nullptr, 'f'},
        {"output", 1, nullptr, 'o'},        {"help", 0, nullptr, 'h'},        {nullptr, 0, nullptr, 0}};
    int index = 0;
    opterr = 0;
    for (int c; (c = getopt_long(argc, argv, "ho:", known, &index)) != -1;) {
        const char* const name = known[index].name;
        switch (c) {
        case 'l':
            options.windowMs = number<double>(name, optarg);
            break;
        case 's':
            options.shiftMs = number<double>(name, optarg);
            break;
        case 'w':
            options.window = example::Window{choice(name, optarg, {"none", "hamming", "hann"})};
            break;
        case 'p':
            options.preemphasis = number<float>(name, optarg);
            break;
        case 'n':
            options.filters = number(name, optarg, 1);
            break;
        case 'a':
            options.lowHz = number(name, optarg, positive);
            break;
        case 'b':
            options.highHz = number(name, optarg, 0.0F);
            break;
        case 'm':
            options.melMul = number(name, optarg, positive);
            break;
        case 'd':
            options.melDiv = number(name, optarg, positive);
            break;
        case 'S':
            options.binShape = choice(name, optarg, {"mel", "bin"}) == 1;
            break;
        case 'P':
            options.power = choice(name, optarg, {"magnitude", "power"}) == 1;
            break;
        case 'L':
            options.logBase = example::LogBase{choice(name, optarg, {"e", "10", "db"})};
            break;
        case 'e':
            options.energyFloor = number(name, optarg, positive);
            break;
        case 'c':
            options.cepstra = number(name, optarg, 1);
            break;
        case 'z':
            options.zeroth = false;
            break;
        case 'i':
            options.lifter = number(name, optarg, 0);
            break;
        case 'D':
            options.scaledDct = choice(name, optarg, {"htk", "none"}) == 0;
            break;
        case 'v':
            options.derivatives = choice(name, optarg, {"0", "1", "2"});
            break;
        case 'W':
            options.deltaWindow = 1 + choice(name, optarg, {"1", "2"});
            break;
        case 'r':
            options.removeMean = true;
            break;
        case 'f':
            npy = choice(name, optarg, {"text", "npy"}) == 1;
            break;
        case 'o':
            output = optarg;
            break;
        case 'h':
            std::cout << help;
            return 0;
        default:
            std::cerr << "features: unknown option, or no value for it: " << argv[optind - 1]
                      << "; try: features --help\n";
            return 2;
        }
    }
    if (optind + 1 != argc) {
        std::cerr << "features: one recording is needed; try: features --help\n";
        return 2;
    }

    std::string error;
    const auto recording = example::readRecording(argv[optind], error);
    if (!recording) {
        fail(error);
    }
    try {
        const example::FrontEnd frontEnd(options, recording->rate);
        example::StageTimes times;
        const example::Features features = frontEnd.compute(recording->samples, times);
        std::ofstream file;
        if (output != "-") {
            file.open(output, std::ios::binary);
        }
        std::ostream& out = output == "-" ? std::cout : file;
        npy ? writeNpy(out, features.vectors) : writeText(out, features.vectors);
        out.flush();
        if (!out) {
            throw example::Failure((output == "-" ? "standard output" : output) + ": cannot be written");
        }
    } catch (const example::Failure& failure) {
        std::cerr << "features: " << recording->path << ": " << failure.what() << '\n';
        return 1;
    }
    return 0;
}
