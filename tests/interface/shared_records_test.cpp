// Threads that call at once, with records that they share where that is allowed and with one of their own where it is
// not: each gets, bit by bit, what one thread alone gets. The thread sanitizer sees the rest: a record that a call
// writes to although it should only read it.

#include "frontend/filter_bank.hpp"
#include "lyrsr.h"

#include <array>
#include <barrier>
#include <cstddef>
#include <functional>
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "support/random.hpp"

namespace {

using lyr::test::Random;

constexpr std::size_t threads = 4;
constexpr std::size_t inputs = 8;
constexpr int rounds = 4;

// The number of a thread and of an input, to the results; a thread calls from one place only.
template <class T>
using Call = std::function<std::vector<T>(std::size_t thread, std::size_t input)>;

// Every thread goes through all inputs, each from another one on, so that both equal and different work goes on at the
// same time.
template <class T>
void expectAsAlone(const Call<T>& call)
{
    std::vector<std::vector<T>> alone;
    for (std::size_t input = 0; input < inputs; ++input) {
        alone.push_back(call(0, input));
        ASSERT_FALSE(alone.back().empty());
    }
    ASSERT_NE(alone[0], alone[1]) << "inputs that nothing could be told from";

    std::vector<std::vector<std::vector<T>>> results(threads);
    std::barrier<> start(threads);
    std::vector<std::thread> running;
    for (std::size_t thread = 0; thread < threads; ++thread) {
        running.emplace_back([&, thread] {
            start.arrive_and_wait();
            for (int round = 0; round < rounds; ++round) {
                for (std::size_t i = 0; i < inputs; ++i) {
                    results[thread].push_back(call(thread, (i + thread) % inputs));
                }
            }
        });
    }
    for (std::thread& thread : running) {
        thread.join();
    }
    for (std::size_t thread = 0; thread < threads; ++thread) {
        for (std::size_t i = 0; i < results[thread].size(); ++i) {
            ASSERT_EQ(results[thread][i], alone[(i + thread) % inputs]) << "thread " << thread << ", call " << i;
        }
    }
}

template <class T>
std::vector<std::vector<T>> makeInputs(std::size_t length, T low, T high)
{
    Random random(static_cast<std::uint32_t>(length));
    std::vector<std::vector<T>> all;
    for (std::size_t i = 0; i < inputs; ++i) {
        all.push_back(random.vector<T>(length, low, high));
    }
    return all;
}

// A record or a status that says that there is none.
template <class State>
std::shared_ptr<State> owned(Status status, State* state, Status (*release)(State*))
{
    EXPECT_EQ(status, StsNoErr);
    return {state, [release](State* p) { EXPECT_EQ(release(p), StsNoErr); }};
}

std::shared_ptr<FFTSpec_R_32f> makeTransform(Elem32s order)
{
    FFTSpec_R_32f* spec = nullptr;
    const Status status = lyrsFFTInitAlloc_R_32f(&spec, order, 4, 0);
    return owned(status, spec, lyrsFFTFree_R_32f);
}

std::shared_ptr<FBankState_32f> makeBank32f(Elem32s fftLen, Elem32s flag)
{
    FBankState_32f* bank = nullptr;
    Elem32s order = 0;
    const Status status = lyrsMelFBankInitAlloc_32f(&bank, &order, fftLen, 16000, 64, 8000, 23, 2595, 700, flag);
    return owned(status, bank, lyrsFBankFree_32f);
}

std::shared_ptr<FBankState_16s> makeBank16s(Elem32s fftLen, Elem32s flag)
{
    FBankState_16s* bank = nullptr;
    Elem32s order = 0;
    const Status status = lyrsMelFBankInitAlloc_16s(&bank, &order, fftLen, 16000, 64, 8000, 23, 2595, 700, flag);
    return owned(status, bank, lyrsFBankFree_16s);
}

// ------------------------------------------------------------------------------------------------------------ shared

// Direct transforms, vectors, blocks of columns, computed tables; with a work buffer for each thread, and with none.
TEST(SharedRecords, TransformOfSingles)
{
    for (const Elem32s order : {3, 5, 9, 12}) {
        SCOPED_TRACE("order " + std::to_string(order));
        const auto spec = makeTransform(order);
        ASSERT_NE(spec, nullptr);
        Elem32s bytes = 0;
        ASSERT_EQ(lyrsFFTGetBufSize_R_32f(spec.get(), &bytes), StsNoErr);
        std::vector<std::vector<Elem8u>> work(threads, std::vector<Elem8u>(static_cast<std::size_t>(bytes) + 1));
        const std::size_t n = std::size_t{1} << order;
        const auto src = makeInputs<float>(n, -1, 1);
        for (const bool brings : {true, false}) {
            for (const auto transform :
                 {lyrsFFTFwd_RToPack_32f, lyrsFFTFwd_RToPerm_32f, lyrsFFTFwd_RToCCS_32f, lyrsFFTInv_PackToR_32f}) {
                expectAsAlone<float>([&](std::size_t thread, std::size_t input) {
                    std::vector<float> dst(n + 2);
                    EXPECT_EQ(
                        transform(src[input].data(), dst.data(), spec.get(), brings ? work[thread].data() : nullptr),
                        StsNoErr);
                    return dst;
                });
            }
        }
    }
}

TEST(SharedRecords, TransformOfIntegers)
{
    for (const Elem32s order : {4, 8, 12}) {
        SCOPED_TRACE("order " + std::to_string(order));
        FFTSpec_R_16s32s* made = nullptr;
        const Status status = lyrsFFTInitAlloc_R_16s32s(&made, order, 8, 0);
        const auto spec = owned(status, made, lyrsFFTFree_R_16s32s);
        Elem32s specBytes = 0;
        Elem32s initBytes = 0;
        Elem32s bytes = 0;
        ASSERT_EQ(lyrsFFTGetSize_R_16s32s(order, 8, 0, &specBytes, &initBytes, &bytes), StsNoErr);
        std::vector<std::vector<Elem8u>> work(threads, std::vector<Elem8u>(static_cast<std::size_t>(bytes) + 1));
        const std::size_t n = std::size_t{1} << order;
        const auto src = makeInputs<Elem16s>(n, INT16_MIN, INT16_MAX);
        for (const bool brings : {true, false}) {
            expectAsAlone<Elem32s>([&](std::size_t thread, std::size_t input) {
                std::vector<Elem32s> dst(n + 2);
                EXPECT_EQ(lyrsFFTFwd_RToCCS_16s32s_Sfs(src[input].data(), dst.data(), spec.get(), -3,
                                                       brings ? work[thread].data() : nullptr),
                          StsNoErr);
                return dst;
            });
        }
    }
}

TEST(SharedRecords, BanksOfSpectra)
{
    const auto singles = makeBank32f(512, FBankMelShape);
    const auto spectra = makeInputs<float>(257, 0, 100);
    expectAsAlone<float>([&](std::size_t, std::size_t input) {
        std::vector<float> dst(23);
        EXPECT_EQ(lyrsEvalFBank_32f(spectra[input].data(), dst.data(), singles.get()), StsNoErr);
        return dst;
    });

    const auto integers = makeBank16s(512, FBankBinShape);
    const auto samples = makeInputs<Elem16s>(257, 0, 2000);
    expectAsAlone<Elem16s>([&](std::size_t, std::size_t input) {
        std::vector<Elem16s> dst(23);
        EXPECT_EQ(lyrsEvalFBank_16s_Sfs(samples[input].data(), dst.data(), integers.get(), 3), StsNoErr);
        return dst;
    });
    expectAsAlone<Elem32s>([&](std::size_t, std::size_t input) {
        std::vector<Elem32s> dst(23);
        EXPECT_EQ(lyrsEvalFBank_16s32s_Sfs(samples[input].data(), dst.data(), integers.get(), 0), StsNoErr);
        return dst;
    });

    // Reading a record is no more than reading, too.
    std::vector<Elem32s> centers(25);
    ASSERT_EQ(lyrsFBankGetCenters_32f(singles.get(), centers.data()), StsNoErr);
    expectAsAlone<float>([&](std::size_t, std::size_t input) {
        const auto filter = static_cast<Elem32s>(input) + 2;
        std::vector<Elem32s> read(25);
        EXPECT_EQ(lyrsFBankGetCenters_32f(singles.get(), read.data()), StsNoErr);
        EXPECT_EQ(read, centers);
        const auto at = static_cast<std::size_t>(filter);
        std::vector<float> coeffs(static_cast<std::size_t>(centers[at + 1] - centers[at - 1]) + 1);
        EXPECT_EQ(lyrsFBankGetCoeffs_32f(singles.get(), filter, coeffs.data()), StsNoErr);
        return coeffs;
    });
}

TEST(SharedRecords, BankInIntegers)
{
    Elem32s bytes = 0;
    ASSERT_EQ(lyrsMelFBankGetSize_32s(256, 23, FBankBinShape, &bytes), StsNoErr);
    std::vector<std::max_align_t> memory(static_cast<std::size_t>(bytes) / sizeof(std::max_align_t) + 1);
    auto* const bank = reinterpret_cast<FBankState_32s*>(memory.data());
    Elem32s order = 0;
    ASSERT_EQ(lyrsMelFBankInit_32s(bank, &order, 256, 8000, 64, 4000, 23, 1127 << 15, 700 << 15, FBankBinShape),
              StsNoErr);
    const auto magnitudes = makeInputs<Elem32s>(129, 0, 1 << 20);
    expectAsAlone<Elem32s>([&](std::size_t, std::size_t input) {
        std::vector<Elem32s> dst(23);
        EXPECT_EQ(lyrsEvalFBank_32s_Sfs(magnitudes[input].data(), dst.data(), bank, 4), StsNoErr);
        return dst;
    });
}

TEST(SharedRecords, LifterOfSingles)
{
    DCTLifterState_32f* made = nullptr;
    const Status status = lyrsDCTLifterInitAlloc_C0_32f(&made, 23, 12, 22, 1, 1);
    const auto state = owned(status, made, lyrsDCTLifterFree_32f);
    const auto energies = makeInputs<float>(23, -10, 20);
    expectAsAlone<float>([&](std::size_t, std::size_t input) {
        std::vector<float> dst(13);
        EXPECT_EQ(lyrsDCTLifter_32f(energies[input].data(), dst.data(), state.get()), StsNoErr);
        return dst;
    });
}

// One model, as block and as table, for the frames of every thread.
template <class T>
struct Model
{
    static constexpr std::size_t height = 130; // beyond one block of Gaussians
    static constexpr std::size_t width = 39;
    static constexpr std::size_t step = 40;

    Random random{5};
    std::vector<T> means = random.vector<T>(height * step, -2, 2);
    std::vector<T> vars = random.vector<T>(height * step, T(0.25), 2);
    std::vector<T> gconst = random.vector<T>(height, -30, -10);
    std::vector<const T*> meanRows;
    std::vector<const T*> varRows;
    std::vector<std::vector<T>> frames = makeInputs<T>(width, -2, 2);

    Model()
    {
        for (std::size_t g = 0; g < height; ++g) {
            meanRows.push_back(means.data() + g * step);
            varRows.push_back(vars.data() + g * step);
        }
    }
};

TEST(SharedRecords, ModelOfSingles)
{
    using M = Model<float>;
    const M m;
    expectAsAlone<float>([&](std::size_t, std::size_t input) {
        std::vector<float> dst(2);
        const float* const frame = m.frames[input].data();
        EXPECT_EQ(lyrsLogGaussMixture_32f_D2(frame, m.means.data(), m.vars.data(), M::height, M::step, M::width,
                                             m.gconst.data(), dst.data()),
                  StsNoErr);
        EXPECT_EQ(
            lyrsLogGaussMixture_IdVar_32f_D2L(frame, m.meanRows.data(), M::height, M::width, m.gconst.data(), &dst[1]),
            StsNoErr);
        return dst;
    });
    expectAsAlone<float>([&](std::size_t, std::size_t input) {
        std::vector<float> dst(M::height, -50.0F);
        const float* const frame = m.frames[input].data();
        EXPECT_EQ(lyrsLogGaussAddMultiMix_32f_D2L(m.meanRows.data(), m.varRows.data(), frame, M::width, m.gconst.data(),
                                                  dst.data(), M::height),
                  StsNoErr);
        EXPECT_EQ(lyrsLogGaussMaxMultiMix_32f_D2(m.means.data(), m.vars.data(), M::step, frame, M::width,
                                                 m.gconst.data(), dst.data(), M::height),
                  StsNoErr);
        return dst;
    });
}

TEST(SharedRecords, ModelOfDoubles)
{
    using M = Model<double>;
    const M m;
    expectAsAlone<double>([&](std::size_t, std::size_t input) {
        std::vector<double> dst(2);
        const double* const frame = m.frames[input].data();
        EXPECT_EQ(lyrsLogGaussMixture_64f_D2L(frame, m.meanRows.data(), m.varRows.data(), M::height, M::width,
                                              m.gconst.data(), dst.data()),
                  StsNoErr);
        EXPECT_EQ(lyrsLogGaussMixture_IdVar_64f_D2(frame, m.means.data(), M::height, M::step, M::width, m.gconst.data(),
                                                   &dst[1]),
                  StsNoErr);
        return dst;
    });
    expectAsAlone<double>([&](std::size_t, std::size_t input) {
        std::vector<double> dst(M::height, -50.0);
        const double* const frame = m.frames[input].data();
        EXPECT_EQ(lyrsLogGaussAddMultiMix_64f_D2(m.means.data(), m.vars.data(), M::step, frame, M::width,
                                                 m.gconst.data(), dst.data(), M::height),
                  StsNoErr);
        EXPECT_EQ(lyrsLogGaussMaxMultiMix_64f_D2L(m.meanRows.data(), m.varRows.data(), frame, M::width, m.gconst.data(),
                                                  dst.data(), M::height),
                  StsNoErr);
        return dst;
    });
}

// --------------------------------------------------------------------------------------------- one for each thread

// Records with scratch that every evaluation writes.
TEST(OwnRecords, BanksOfFrames)
{
    const Elem32s flag = FBankMelShape + FBankFromFrames;
    std::array<std::shared_ptr<FBankState_32f>, threads> singles;
    std::array<std::shared_ptr<FBankState_16s>, threads> integers;
    for (std::size_t thread = 0; thread < threads; ++thread) {
        singles[thread] = makeBank32f(512, flag);
        integers[thread] = makeBank16s(512, flag);
    }
    const auto frames = makeInputs<float>(512, -1000, 1000);
    expectAsAlone<float>([&](std::size_t thread, std::size_t input) {
        std::vector<float> dst(23);
        EXPECT_EQ(lyrsEvalFBank_32f(frames[input].data(), dst.data(), singles[thread].get()), StsNoErr);
        return dst;
    });
    const auto samples = makeInputs<Elem16s>(512, -1000, 1000);
    expectAsAlone<Elem32s>([&](std::size_t thread, std::size_t input) {
        std::vector<Elem32s> dst(23);
        EXPECT_EQ(lyrsEvalFBank_16s32s_Sfs(samples[input].data(), dst.data(), integers[thread].get(), 2), StsNoErr);
        return dst;
    });
}

TEST(OwnRecords, LiftersOfIntegers)
{
    std::array<std::shared_ptr<DCTLifterState_16s>, threads> states;
    for (auto& state : states) {
        DCTLifterState_16s* made = nullptr;
        const Status status = lyrsDCTLifterInitAlloc_16s(&made, 23, 12, 22, 1);
        state = owned(status, made, lyrsDCTLifterFree_16s);
    }
    const auto energies = makeInputs<Elem32s>(23, -100000, 100000);
    expectAsAlone<Elem16s>([&](std::size_t thread, std::size_t input) {
        std::vector<Elem16s> dst(12);
        EXPECT_EQ(lyrsDCTLifter_32s16s_Sfs(energies[input].data(), dst.data(), states[thread].get(), 5), StsNoErr);
        return dst;
    });
}

// Records come and go in one thread while others compute.
TEST(OwnRecords, BuiltAtTheSameTime)
{
    const auto frames = makeInputs<float>(256, -1000, 1000);
    expectAsAlone<float>([&](std::size_t, std::size_t input) {
        const auto bank = makeBank32f(256, FBankBinShape + FBankFromFrames);
        const auto spec = makeTransform(8);
        std::vector<float> dst(23 + 256);
        EXPECT_EQ(lyrsEvalFBank_32f(frames[input].data(), dst.data(), bank.get()), StsNoErr);
        EXPECT_EQ(lyrsFFTFwd_RToPerm_32f(frames[input].data(), &dst[23], spec.get(), nullptr), StsNoErr);
        return dst;
    });
}

// A call that sets the rounding mode sets that of its own thread: even inputs round to the nearest, odd ones toward
// zero.
TEST(OwnRecords, RoundingModes)
{
    const auto values = makeInputs<float>(100, -1000, 1000);
    expectAsAlone<Elem16s>([&](std::size_t, std::size_t input) {
        std::vector<Elem16s> dst(100);
        EXPECT_EQ(lyrsConvert_32f16s_Sfs(values[input].data(), dst.data(), 100, input % 2 == 0 ? 1 : 0, 0), StsNoErr);
        return dst;
    });
}

} // namespace
