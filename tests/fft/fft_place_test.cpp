// The real transform wherever its vectors lie: in place, at any alignment, with and without a buffer, in many threads.

#include "lyrsr.h"

#include <cstddef>
#include <gtest/gtest.h>
#include <string>
#include <thread>
#include <vector>

#include "fft/fft_fixture.hpp"
#include "oracle/fft.hpp"
#include "support/allocation.hpp"
#include "support/guarded.hpp"

namespace lyr::test {
namespace {

// The same values in place and out of place, wherever source, destination and buffer lie, and nothing outside of them.
TEST(RealFft, PlaceAndAlignmentChangeNothing)
{
    for (const int order : {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 13, 18, 19}) {
        SCOPED_TRACE("order " + std::to_string(order));
        const Record spec = makeRecord(order, 4);
        const std::vector<float> x = signal(order);
        const std::size_t n = x.size();
        const std::vector<float> ccs = ccsOf(x, spec.get());
        const std::vector<float> pack = packOf(x, spec.get());
        const std::vector<float> back = signalOf(x, spec.get());
        for (std::size_t offset = 0; offset<64; offset += order> 13 ? 20 : 4) {
            SCOPED_TRACE("offset " + std::to_string(offset));
            const Guarded<Elem8u> buffer(bufferSize(spec), offset / 4);
            const Guarded<float> source(x, offset);
            const Guarded<float> spectrum(ccs.size(), (offset + 24) % 64);
            EXPECT_EQ(lyrsFFTFwd_RToCCS_32f(source.data(), spectrum.data(), spec.get(), buffer.data()), StsNoErr);
            EXPECT_TRUE(sameBits(spectrum.copy(), ccs));
            EXPECT_TRUE(sameBits(source.copy(), x));
            EXPECT_TRUE(spectrum.intact() && buffer.intact());

            const Guarded<float> both(x, offset);
            EXPECT_EQ(lyrsFFTFwd_RToPack_32f(both.data(), both.data(), spec.get(), buffer.data()), StsNoErr);
            EXPECT_TRUE(sameBits(both.copy(), pack));
            EXPECT_TRUE(both.intact());

            const Guarded<float> perm(n, (offset + 40) % 64);
            EXPECT_EQ(lyrsFFTFwd_RToPerm_32f(source.data(), perm.data(), spec.get(), buffer.data()), StsNoErr);
            EXPECT_TRUE(sameBits(perm.copy(), oracle::permFromCcs(ccs)));
            EXPECT_TRUE(perm.intact());

            const Guarded<float> result(n, (offset + 12) % 64);
            EXPECT_EQ(lyrsFFTInv_PackToR_32f(source.data(), result.data(), spec.get(), buffer.data()), StsNoErr);
            EXPECT_TRUE(sameBits(result.copy(), back));
            EXPECT_TRUE(result.intact());
            EXPECT_EQ(lyrsFFTInv_PackToR_32f(source.data(), source.data(), spec.get(), buffer.data()), StsNoErr);
            EXPECT_TRUE(sameBits(source.copy(), back));
            EXPECT_TRUE(source.intact() && buffer.intact());
        }
        // Ending exactly at unmapped pages.
        const Guarded<Elem8u> buffer(bufferSize(spec), Guarded<Elem8u>::flush(bufferSize(spec)));
        const Guarded<float> source(x, Guarded<float>::flush(n));
        const Guarded<float> wide(ccs.size(), Guarded<float>::flush(ccs.size()));
        const Guarded<float> narrow(n, Guarded<float>::flush(n));
        EXPECT_EQ(lyrsFFTFwd_RToCCS_32f(source.data(), wide.data(), spec.get(), buffer.data()), StsNoErr);
        EXPECT_TRUE(sameBits(wide.copy(), ccs));
        EXPECT_EQ(lyrsFFTFwd_RToPack_32f(source.data(), narrow.data(), spec.get(), buffer.data()), StsNoErr);
        EXPECT_TRUE(sameBits(narrow.copy(), pack));
        EXPECT_EQ(lyrsFFTInv_PackToR_32f(source.data(), narrow.data(), spec.get(), buffer.data()), StsNoErr);
        EXPECT_TRUE(sameBits(narrow.copy(), back));
        EXPECT_TRUE(wide.intact() && narrow.intact() && buffer.intact());
    }
}

TEST(RealFft, AllocatesItsBufferOnlyIfNoneIsGiven)
{
    for (const int order : {0, 3, 4, 9, 18}) {
        const Record spec = makeRecord(order);
        const std::vector<float> x = signal(order);
        std::vector<float> y(x.size() + 2);
        const Guarded<Elem8u> buffer(bufferSize(spec));
        const long before = allocationCount();
        lyrsFFTFwd_RToCCS_32f(x.data(), y.data(), spec.get(), buffer.data());
        EXPECT_EQ(allocationCount(), before);
        const std::vector<float> untouched = y;
        for (const Forward call :
             {lyrsFFTFwd_RToCCS_32f, lyrsFFTFwd_RToPack_32f, lyrsFFTFwd_RToPerm_32f, Forward{lyrsFFTInv_PackToR_32f}}) {
            EXPECT_EQ(failEachAllocation([&] { return call(x.data(), y.data(), spec.get(), nullptr); }, {},
                                         [&] { EXPECT_TRUE(sameBits(y, untouched)); }),
                      order < 4 ? 0 : 1);
            y = untouched;
        }
    }
}

TEST(RealFft, OneRecordServesManyThreads)
{
    for (const int order : {6, 11, 18}) {
        const Record spec = makeRecord(order);
        const std::vector<float> x = signal(order);
        const std::vector<float> expected = ccsOf(x, spec.get());
        std::vector<std::vector<float>> results(4, std::vector<float>(x.size() + 2));
        std::vector<std::thread> threads;
        for (std::vector<float>& y : results) {
            threads.emplace_back([&] {
                for (int i = 0; i < 8; ++i) {
                    lyrsFFTFwd_RToCCS_32f(x.data(), y.data(), spec.get(), nullptr);
                }
            });
        }
        for (std::thread& t : threads) {
            t.join();
        }
        for (const std::vector<float>& y : results) {
            EXPECT_TRUE(sameBits(y, expected));
        }
    }
}

} // namespace
} // namespace lyr::test
