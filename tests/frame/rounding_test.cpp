// The floating-point environment of a call.

#include "frame/rounding.hpp"

#include <gtest/gtest.h>

namespace {

using lyr::ConversionScope;
using lyr::exceptionFlags;
using lyr::exceptionMasks;
using lyr::FlagScope;
using lyr::invalidFlag;
using lyr::roundingBits;
using lyr::roundNearest;
using lyr::roundTowardZero;

constexpr unsigned defaults = exceptionMasks;
constexpr unsigned roundUp = 0x4000U;
constexpr unsigned flushToZero = 0x8000U;
constexpr unsigned inexactFlag = 0x0020U;
constexpr unsigned divideByZeroFlag = 0x0004U;

// Leaves the control word as it was before the test.
class Rounding : public ::testing::Test
{
protected:
    ~Rounding() override { _mm_setcsr(before); }

    unsigned before = _mm_getcsr();
};

// 1 / x, out of the optimiser's sight.
float reciprocal(float x)
{
    volatile float y = x;
    y = 1.0F / y;
    return y;
}

// A conversion of `x` in the mode in force.
int convert(float x)
{
    volatile float y = x;
    return _mm_cvtss_si32(_mm_set_ss(y));
}

TEST_F(Rounding, AModeForItsLifetime)
{
    for (const unsigned callers : {0x0000U, 0x2000U, 0x4000U, 0x6000U}) {
        _mm_setcsr(defaults | callers);
        {
            const ConversionScope scope(roundNearest);
            EXPECT_EQ(_mm_getcsr() & roundingBits, roundNearest);
            EXPECT_EQ(convert(2.5F), 2);
            EXPECT_EQ(convert(3.5F), 4);
        }
        EXPECT_EQ(_mm_getcsr() & roundingBits, callers);
        {
            const FlagScope scope(roundTowardZero);
            EXPECT_EQ(convert(-2.75F), -2);
        }
        EXPECT_EQ(_mm_getcsr() & roundingBits, callers);
        {
            const FlagScope scope;
            EXPECT_EQ(_mm_getcsr() & roundingBits, callers) << "the caller's mode, where none is asked for";
        }
    }
}

TEST_F(Rounding, ControlBitsComeBack)
{
    const unsigned callers = roundUp | flushToZero | (exceptionMasks & ~0x0200U); // division by zero unmasked
    _mm_setcsr(callers);
    {
        const ConversionScope scope(roundNearest);
        EXPECT_EQ(_mm_getcsr() & exceptionMasks, exceptionMasks);
        EXPECT_NE(_mm_getcsr() & flushToZero, 0U) << "what is not of the scope stays in force";
    }
    const unsigned after = _mm_getcsr();
    _mm_setcsr(before);
    EXPECT_EQ(after, callers);
}

TEST_F(Rounding, AConversionLeavesNoTraceInTheInvalidFlag)
{
    for (const unsigned callers : {0U, invalidFlag, divideByZeroFlag, exceptionFlags}) {
        _mm_setcsr(defaults | callers);
        {
            const ConversionScope scope(roundNearest);
            EXPECT_EQ(convert(1e20F), INT32_MIN); // raises invalid
            EXPECT_EQ(convert(0.3F), 0);          // raises inexact
        }
        EXPECT_EQ(_mm_getcsr() & exceptionFlags, callers | inexactFlag) << "other flags show what was raised";
    }
}

TEST_F(Rounding, AFlagScopeKeepsAllFlags)
{
    for (const unsigned callers : {0U, invalidFlag, inexactFlag, exceptionFlags}) {
        _mm_setcsr(defaults | callers);
        {
            const FlagScope scope(roundNearest);
            EXPECT_EQ(convert(1e20F), INT32_MIN);
            static_cast<void>(reciprocal(0.0F));
            static_cast<void>(reciprocal(3.0F));
        }
        EXPECT_EQ(_mm_getcsr() & exceptionFlags, callers);
    }
}

// A caller that traps on invalid operations gets no trap from within: the process would end here.
TEST_F(Rounding, UnmaskedExceptionsDoNotTrapInside)
{
    _mm_setcsr(0x0000U);
    int converted = 0;
    {
        const ConversionScope scope(roundNearest);
        converted = convert(1e20F);
    }
    const unsigned after = _mm_getcsr();
    _mm_setcsr(before);
    EXPECT_EQ(converted, INT32_MIN);
    EXPECT_EQ(after & exceptionMasks, 0U);
    EXPECT_EQ(after & invalidFlag, 0U);
}

} // namespace
