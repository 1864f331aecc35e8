#include "front_end.hpp"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <numbers>
#include <sstream>

namespace example {

void check(Status status, const char* call)
{
    if (status < StsNoErr) {
        throw Failure(std::string(call) + " failed with status " + std::to_string(status));
    }
}

Matrix::Matrix(int rows, int columns)
{
    const std::int64_t padded = (static_cast<std::int64_t>(columns) + 7) / 8 * 8;
    const std::int64_t elements = std::max(rows, 1) * padded;
    if (elements <= std::numeric_limits<Elem32s>::max()) {
        data.reset(lyrsMalloc_32f(static_cast<Elem32s>(elements)));
    }
    if (!data) {
        throw Failure("out of memory");
    }
    check(lyrsZero_32f(data.get(), static_cast<Elem32s>(elements)), "lyrsZero_32f");
    height = rows;
    width = columns;
    stride = static_cast<int>(padded);
}

void StageTimes::add(const std::string& stage, double seconds)
{
    for (Entry& entry : stages) {
        if (entry.stage == stage) {
            entry.seconds += seconds;
            return;
        }
    }
    stages.push_back({stage, seconds});
}

double StageTimes::total() const
{
    double sum = 0;
    for (const Entry& entry : stages) {
        sum += entry.seconds;
    }
    return sum;
}

namespace {

std::vector<float> makeWindow(Window kind, int length)
{
    std::vector<float> window(static_cast<std::size_t>(length), 1.0F);
    if (kind == Window::None) {
        return window;
    }
    const double offset = kind == Window::Hamming ? 0.54 : 0.5;
    for (int i = 0; i < length; ++i) {
        const double angle = 2 * std::numbers::pi * i / std::max(length - 1, 1);
        window[static_cast<std::size_t>(i)] = static_cast<float>(offset - (1 - offset) * std::cos(angle));
    }
    return window;
}

// The value of a flag bit of the bank: it owns the transform and takes time frames.
constexpr Elem32s fromFrames = 4;

} // namespace

FrontEnd::FrontEnd(const Options& chosen, float sampleRate) : options(chosen), rate(sampleRate)
{
    const double exactLength = options.windowMs * static_cast<double>(rate) / 1000;
    const double exactShift = options.shiftMs * static_cast<double>(rate) / 1000;
    constexpr double longest = 1 << 24;
    if (!(exactLength >= 1.5 && exactLength <= longest && exactShift >= 0.5 && exactShift <= longest)) {
        throw Failure("the window has to hold 2 to 16777216 samples, the shift 1 to 16777216");
    }
    length = static_cast<int>(std::lround(exactLength));
    shift = static_cast<int>(std::lround(exactShift));
    if (options.filters > length) {
        throw Failure("at most " + std::to_string(length) + " filters for frames of as many samples");
    }
    if (options.cepstra > options.filters) {
        throw Failure("at most " + std::to_string(options.filters) + " cepstra of as many filters");
    }
    window = makeWindow(options.window, length);
    floor.assign(static_cast<std::size_t>(options.filters), options.energyFloor);
    const float high = options.highHz > 0 ? options.highHz : rate / 2;

    // Magnitudes come straight from the bank's own transform; powers are squared in between, so that the bank takes a
    // spectrum.
    const Elem32s flag = (options.binShape ? 2 : 1) + (options.power ? 0 : fromFrames);
    Elem32s order = 0;
    if (lyrsMelFBankInitAlloc_32f(&bank, &order, length, rate, options.lowHz, high, options.filters, options.melMul,
                                  options.melDiv, flag) != StsNoErr) {
        std::ostringstream message;
        message << "no filter bank from " << options.lowHz << " to " << high << " Hz at " << rate
                << " samples per second";
        throw Failure(message.str());
    }
    fftLength = 1 << order;
    if (options.power) {
        check(lyrsFFTInitAlloc_R_32f(&spectrum, order, 8, 0), "lyrsFFTInitAlloc_R_32f");
    }

    // The transform itself has no scale: it comes in through the weights.
    const auto inputs = static_cast<float>(options.filters);
    const float scale = options.scaledDct ? std::sqrt(2.0F / inputs) : 1.0F;
    statics = options.cepstra + (options.zeroth ? 1 : 0);
    if (options.lifter > 0) {
        check(options.zeroth
                  ? lyrsDCTLifterInitAlloc_C0_32f(&dct, options.filters, options.cepstra, options.lifter, scale, scale)
                  : lyrsDCTLifterInitAlloc_32f(&dct, options.filters, options.cepstra, options.lifter, scale),
              "lyrsDCTLifterInitAlloc");
    } else {
        const std::vector<float> weights(static_cast<std::size_t>(std::max(options.cepstra, 1)), scale);
        check(options.zeroth ? lyrsDCTLifterInitAlloc_MulC0_32f(&dct, options.filters, weights.data(), options.cepstra)
                             : lyrsDCTLifterInitAlloc_Mul_32f(&dct, options.filters, weights.data(), options.cepstra),
              "lyrsDCTLifterInitAlloc_Mul");
    }
}

FrontEnd::~FrontEnd()
{
    if (bank != nullptr) {
        lyrsFBankFree_32f(bank);
    }
    if (spectrum != nullptr) {
        lyrsFFTFree_R_32f(spectrum);
    }
    if (dct != nullptr) {
        lyrsDCTLifterFree_32f(dct);
    }
}

std::vector<float> FrontEnd::centres() const
{
    std::vector<Elem32s> bins(static_cast<std::size_t>(options.filters) + 2);
    check(lyrsFBankGetCenters_32f(bank, bins.data()), "lyrsFBankGetCenters_32f");
    std::vector<float> hertz;
    for (std::size_t i = 1; i + 1 < bins.size(); ++i) {
        hertz.push_back(static_cast<float>(bins[i]) * rate / static_cast<float>(fftLength));
    }
    return hertz;
}

// `frame` holds fftLength + 2 elements, of which the first fftLength are the samples.
void FrontEnd::energiesOfFrame(float* frame, float* energies) const
{
    if (options.power) {
        const Elem32s bins = fftLength / 2 + 1;
        check(lyrsFFTFwd_RToCCS_32f(frame, frame, spectrum, nullptr), "lyrsFFTFwd_RToCCS_32f");
        check(lyrsMagnitude_32fc(reinterpret_cast<const Elem32fc*>(frame), frame, bins), "lyrsMagnitude_32fc");
        check(lyrsMul_32f(frame, frame, frame, bins), "lyrsMul_32f");
    }
    check(lyrsEvalFBank_32f(frame, energies, bank), "lyrsEvalFBank_32f");
}

Features FrontEnd::compute(const std::vector<float>& samples, StageTimes& times) const
{
    const auto count = static_cast<int>(samples.size());
    const int frames = count < length ? 0 : 1 + (count - length) / shift;
    const int fewest = options.derivatives == 0 ? 1 : (options.derivatives == 1 ? 2 : 3) * options.deltaWindow;
    if (frames < fewest) {
        throw Failure("too short: " + std::to_string(frames) + " frames, at least " + std::to_string(fewest) +
                      " are needed");
    }

    std::vector<float> emphasised(samples);
    times.measure("pre-emphasis", [&] {
        if (options.preemphasis != 0 && count > 1) {
            std::vector<float> scaled(samples.size() - 1);
            check(lyrsMulC_32f(samples.data(), options.preemphasis, scaled.data(), count - 1), "lyrsMulC_32f");
            check(lyrsSub_32f_I(scaled.data(), emphasised.data() + 1, count - 1), "lyrsSub_32f_I");
            emphasised[0] *= 1 - options.preemphasis;
        }
    });

    Features result;
    result.energies = Matrix(frames, options.filters);
    times.measure("window, mel bank", [&] {
        Matrix frame(2, fftLength + 2);
        for (int f = 0; f < frames; ++f) {
            check(lyrsMul_32f(emphasised.data() + static_cast<std::ptrdiff_t>(f) * shift, window.data(), frame.row(0),
                              length),
                  "lyrsMul_32f");
            check(lyrsCopyWithPadding_32f(frame.row(0), length, frame.row(1), fftLength), "lyrsCopyWithPadding_32f");
            energiesOfFrame(frame.row(1), result.energies.row(f));
        }
    });
    times.measure("logarithm", [&] {
        for (int f = 0; f < frames; ++f) {
            float* const row = result.energies.row(f);
            check(lyrsMaxEvery_32f_I(floor.data(), row, options.filters), "lyrsMaxEvery_32f_I");
            check(lyrsLn_32f_I(row, options.filters), "lyrsLn_32f_I");
            if (options.logBase != LogBase::E) {
                const double perNeper = (options.logBase == LogBase::Decibel ? 10 : 1) / std::numbers::ln10;
                check(lyrsMulC_32f_I(static_cast<float>(perNeper), row, options.filters), "lyrsMulC_32f_I");
            }
        }
    });

    // The delta functions take packed rows.
    std::vector<float> cepstra(static_cast<std::size_t>(frames) * static_cast<std::size_t>(statics));
    times.measure("DCT, lifter", [&] {
        for (int f = 0; f < frames; ++f) {
            check(lyrsDCTLifter_32f(result.energies.row(f), cepstra.data() + static_cast<std::ptrdiff_t>(f) * statics,
                                    dct),
                  "lyrsDCTLifter_32f");
        }
    });

    result.vectors = Matrix(frames, statics * (options.derivatives + 1));
    times.measure("deltas", [&] {
        constexpr Elem32s beginAndEnd = 3;
        // Regression over t = 1 ... window: the denominator is twice the sum of the squares.
        const float gain = options.deltaWindow == 1 ? 0.5F : 0.1F;
        float* const dst = result.vectors.row(0);
        const Elem32s step = result.vectors.step();
        switch (options.derivatives) {
        case 0:
            check(lyrsCopyColumn_32f_D2(cepstra.data(), statics, dst, step, frames), "lyrsCopyColumn_32f_D2");
            break;
        case 1:
            check((options.deltaWindow == 1 ? lyrsDelta_Win1_32f_D2 : lyrsDelta_Win2_32f_D2)(
                      cepstra.data(), statics, dst, step, frames, gain, beginAndEnd),
                  "lyrsDelta");
            break;
        default:
            check((options.deltaWindow == 1 ? lyrsDeltaDelta_Win1_32f_D2 : lyrsDeltaDelta_Win2_32f_D2)(
                      cepstra.data(), statics, dst, step, frames, gain, gain, beginAndEnd),
                  "lyrsDeltaDelta");
        }
    });

    times.measure("mean removal", [&] {
        if (options.removeMean) {
            const Elem32s width = result.vectors.columns();
            std::vector<float> mean(static_cast<std::size_t>(width));
            check(lyrsMeanColumn_32f_D2(result.vectors.row(0), frames, result.vectors.step(), mean.data(), width),
                  "lyrsMeanColumn_32f_D2");
            for (int f = 0; f < frames; ++f) {
                check(lyrsSub_32f_I(mean.data(), result.vectors.row(f), width), "lyrsSub_32f_I");
            }
        }
    });
    for (int f = 0; f < frames; ++f) {
        const float* const row = result.vectors.row(f);
        if (!std::all_of(row, row + result.vectors.columns(), [](float x) { return std::isfinite(x); })) {
            throw Failure("frame " + std::to_string(f) + " is too loud: its features are not finite");
        }
    }
    return result;
}

} // namespace example
