#include "fft/fft_tables.hpp"

#include "fft/fft_kernels.hpp"
#include "frame/memory.hpp"

#include <cmath>

namespace lyr::fft {
namespace {

constexpr double twoPi = 6.283185307179586;

// Power series to well below the last place of a double for |x| <= pi/4.
constexpr double seriesSin(double x)
{
    double term = x;
    double sum = 0.0;
    for (int n = 1; n < 24; n += 2) {
        sum += term;
        term *= -x * x / ((n + 1) * (n + 2));
    }
    return sum;
}

constexpr double seriesCos(double x)
{
    double term = 1.0;
    double sum = 0.0;
    for (int n = 0; n < 24; n += 2) {
        sum += term;
        term *= -x * x / ((n + 1) * (n + 2));
    }
    return sum;
}

struct ConstantSine
{
    float s[(1 << (constantSineOrder - 2)) + 1];
};

constexpr ConstantSine makeConstantSine()
{
    constexpr int quarter = 1 << (constantSineOrder - 2);
    ConstantSine t{};
    for (int k = 0; k <= quarter; ++k) {
        const double step = twoPi / (1 << constantSineOrder);
        t.s[k] = static_cast<float>(2 * k <= quarter ? seriesSin(k * step) : seriesCos((quarter - k) * step));
    }
    return t;
}

constexpr ConstantSine generated = makeConstantSine();

struct Pair
{
    float re;
    float im;
};

// exp(-2*pi*i * k / 2^logN) from a sine table of one quadrant.
class Turn
{
public:
    Turn(const float* table, int tableOrder) noexcept : sine(table), order(tableOrder) {}

    [[nodiscard]] Pair phasor(std::uint64_t k, int logN) const noexcept
    {
        const std::uint64_t turn = std::uint64_t{1} << order;
        const std::uint64_t at = (k << (order - logN)) & (turn - 1);
        return {sinAt((at + turn / 4) & (turn - 1)), -sinAt(at)};
    }

private:
    [[nodiscard]] float sinAt(std::uint64_t at) const noexcept
    {
        const std::uint64_t quarter = std::uint64_t{1} << (order - 2);
        const std::uint64_t within = at & (quarter - 1);
        switch (at >> (order - 2)) {
        case 0:
            return sine[within];
        case 1:
            return sine[quarter - within];
        case 2:
            return -sine[within];
        default:
            return -sine[quarter - within];
        }
    }

    const float* sine;
    int order;
};

// Byte offsets of the tables from the first multiple of 64 behind the record.
struct Offsets
{
    std::uint64_t twiddles;
    std::uint64_t recombination;
    std::uint64_t splits[3];
    std::uint64_t bitReversal;
    std::uint64_t end;
};

constexpr int logSplitCount(const Plan& plan, int level)
{
    return plan.logM - level - 1;
}

constexpr int logRecombinationFine(const Plan& plan)
{
    return plan.logRows;
}

constexpr Offsets offsetsOf(const Plan& plan)
{
    Offsets o{};
    std::uint64_t at = 0;
    const auto take = [&at](std::uint64_t bytes) {
        const std::uint64_t start = at;
        at += alignUp(bytes, tableAlignment);
        return start;
    };
    o.twiddles = take(twiddleParts(plan).floats * sizeof(float));
    o.recombination = take(phasorFloats(logRecombinationFine(plan), plan.logM) * sizeof(float));
    for (int level = 0; level < plan.splits; ++level) {
        o.splits[level] = take(phasorFloats(logSplitFine, logSplitCount(plan, level)) * sizeof(float));
    }
    o.bitReversal =
        take(plan.lanes == 1 ? 0 : (plan.rows() + (plan.isLarge() ? plan.cols() : 0)) * sizeof(std::uint32_t));
    o.end = at;
    return o;
}

constexpr Sizes sizesFor(int order, const Plan& plan)
{
    const std::uint64_t n = std::uint64_t{1} << order;
    const std::uint64_t m = n / 2;
    const std::uint64_t init = order <= constantSineOrder ? 0 : alignUp(n + 4, tableAlignment) + tableAlignment;
    if (!plan.isLarge()) {
        // The tables of this plan need less than what callers have always been told, and the sizes stay as they are.
        return {alignUp(8 * m + 8, tableAlignment) + alignUp(m + 4, tableAlignment) +
                    2 * alignUp(2 * n, tableAlignment) + 128,
                init, alignUp(8 * m, tableAlignment) + tableAlignment};
    }
    const std::uint64_t part = std::uint64_t{8} << (plan.logRows + plan.logCols);
    const std::uint64_t strip = std::uint64_t{8} * plan.rows() * static_cast<std::uint64_t>(plan.lanes);
    return {tableAlignment + alignUp(sizeof(FFTSpec_R_32f), tableAlignment) + cacheLine + offsetsOf(plan).end, init,
            part + strip + tableAlignment};
}

// From the worst address of a caller's memory: to the record, to the cache line behind it, and the tables.
constexpr bool doTablesFit(int order, int lanes)
{
    const Plan plan = planOf(order, lanes);
    return tableAlignment + alignUp(sizeof(FFTSpec_R_32f), tableAlignment) + cacheLine + offsetsOf(plan).end <=
           sizesFor(order, plan).spec;
}

constexpr bool doTablesFitEverywhere()
{
    for (int order = directBelow; order <= maxOrder; ++order) {
        if (!doTablesFit(order, 4) || !doTablesFit(order, 8) || !doTablesFit(order, 16)) {
            return false;
        }
    }
    return true;
}
static_assert(doTablesFitEverywhere());

void fillBitReversal(std::uint32_t* table, int bits) noexcept
{
    for (std::uint32_t i = 0; i < std::uint32_t{1} << bits; ++i) {
        table[i] = reverseBits(i, bits);
    }
}

void put(float*& p, Pair w) noexcept
{
    *p++ = w.re;
    *p++ = w.im;
}

// Twiddles of the passes over 2^logN rows: w^(f*j) for butterfly j and the frequency f of its output, whose bits are
// reversed.
void fillColumns(float* p, const Turn& turn, int logN) noexcept
{
    for (; !isLastPass(logN); logN -= passBits(logN)) {
        const int bits = passBits(logN);
        for (std::uint32_t j = 0; j < std::uint32_t{1} << (logN - bits); ++j) {
            for (std::uint32_t slot = 1; slot < std::uint32_t{1} << bits; ++slot) {
                put(p, turn.phasor(std::uint64_t{j} * reverseBits(slot, bits), logN));
            }
        }
    }
}

// f(k1 + 2^logFine * k2) = size * exp(-2*pi*i * ((k1 + 2^logFine * k2) / 2^logN + quarters / 4)).
void fillPhasors(float* table, const Turn& turn, int lanes, int logFine, int logCount, int logN, unsigned quarters,
                 float size) noexcept
{
    const auto w = static_cast<std::uint64_t>(lanes);
    for (std::uint64_t k = 0; k < std::uint64_t{1} << logFine; ++k) {
        const Pair f = turn.phasor(k, logN);
        float* const vector = table + k / w * 2 * w + k % w;
        vector[0] = size * f.re;
        vector[w] = size * f.im;
    }
    float* coarse = table + (std::size_t{2} << logFine);
    for (std::uint64_t k = 0; k < std::uint64_t{1} << (logCount - logFine); ++k) {
        put(coarse, turn.phasor((k << logFine) + (std::uint64_t{quarters} << (logN - 2)), logN));
    }
}

void fillTwiddles(float* table, const Turn& turn, const Plan& plan) noexcept
{
    const TwiddleParts parts = twiddleParts(plan);
    const int logPart = plan.logRows + plan.logCols;
    const auto lanes = static_cast<std::size_t>(plan.lanes);
    for (std::size_t k1 = 0; k1 < plan.rows(); ++k1) {
        float* const vector = table + parts.tile + k1 * 2 * lanes;
        for (std::size_t i = 0; i < lanes; ++i) {
            const Pair w = turn.phasor(k1 * i, logPart);
            vector[i] = w.re;
            vector[lanes + i] = w.im;
        }
    }
    fillColumns(table + parts.rows, turn, plan.logRows);
    if (plan.isLarge()) {
        float* p = table + parts.strip;
        for (std::size_t s = 0; s < plan.strips(); ++s) {
            for (std::size_t k1 = 0; k1 < plan.rows(); ++k1) {
                put(p, turn.phasor(k1 * lanes * s, logPart));
            }
        }
        fillColumns(table + parts.cols, turn, plan.logCols);
    }
}

} // namespace

const float* constantSine() noexcept
{
    return generated.s;
}

void computeSine(float* table, int order) noexcept
{
    const std::uint64_t quarter = std::uint64_t{1} << (order - 2);
    const double step = twoPi / static_cast<double>(quarter * 4);
    for (std::uint64_t k = 0; k <= quarter; ++k) {
        // No argument beyond pi/4, so that neither function loses accuracy near its zero at pi/2.
        const double s = 2 * k <= quarter ? std::sin(static_cast<double>(k) * step)
                                          : std::cos(static_cast<double>(quarter - k) * step);
        table[k] = static_cast<float>(s);
    }
}

Sizes sizesOf(int order) noexcept
{
    if (order < directBelow) {
        return {112, 0, 0};
    }
    return sizesFor(order, planOf(order, kernels.lanes));
}

std::uint64_t tableBytes(const Plan& plan) noexcept
{
    return offsetsOf(plan).end;
}

void buildTables(FFTSpec_R_32f& spec, const Plan& plan, const float* sine, int sineOrder) noexcept
{
    const Offsets offsets = offsetsOf(plan);
    const Turn turn(sine, sineOrder);
    auto* const base = alignUp(reinterpret_cast<std::byte*>(&spec + 1), cacheLine);
    spec.pTwd = reinterpret_cast<float*>(base + offsets.twiddles);
    spec.pRealRec = reinterpret_cast<float*>(base + offsets.recombination);
    spec.pCcsRec = spec.pRealRec;
    spec.pBitRev = reinterpret_cast<std::uint32_t*>(base + offsets.bitReversal);
    // The recombination multiplies by halves of -i * w_N^k: see fft_recombine.hpp.
    fillPhasors(spec.pRealRec, turn, plan.lanes, logRecombinationFine(plan), plan.logM, spec.order, 1, 0.5F);
    if (plan.lanes == 1) {
        return;
    }
    fillTwiddles(spec.pTwd, turn, plan);
    fillBitReversal(spec.pBitRev, plan.logRows);
    if (plan.isLarge()) {
        fillBitReversal(spec.pBitRev + plan.rows(), plan.logCols);
    }
    for (int level = 0; level < plan.splits; ++level) {
        spec.pBlkTwd[level] = reinterpret_cast<float*>(base + offsets.splits[level]);
        fillPhasors(spec.pBlkTwd[level], turn, plan.lanes, logSplitFine, logSplitCount(plan, level), plan.logM - level,
                    0, 1.0F);
    }
}

} // namespace lyr::fft
