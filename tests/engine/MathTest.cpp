#include "engine/Math.h"

#include <cmath>

#include <gtest/gtest.h>

using orvel::Math;
using orvel::vec2;
using orvel::vec3;

// ---- Absolute value, minimum and maximum ----

TEST(Math, AbsDropsTheSign)
{
    EXPECT_EQ(Math::abs(-5), 5);
    EXPECT_EQ(Math::abs(5), 5);
    EXPECT_EQ(Math::abs(0), 0);
    EXPECT_EQ(Math::abs(-2.5f), 2.5f);
    EXPECT_EQ(Math::abs(2.5f), 2.5f);
}

TEST(Math, MiniAndMaxiPickSmallerAndLarger)
{
    EXPECT_EQ(Math::mini(3, -2), -2);
    EXPECT_EQ(Math::mini(-2, 3), -2);
    EXPECT_EQ(Math::maxi(3, -2), 3);
    EXPECT_EQ(Math::maxi(-2, 3), 3);
    EXPECT_EQ(Math::mini(4, 4), 4);
}

TEST(Math, MinivAndMaxivScanWholeArray)
{
    int v[] = {3, -1, 7, 2};
    EXPECT_EQ(Math::miniv(v, 4), -1);
    EXPECT_EQ(Math::maxiv(v, 4), 7);
    EXPECT_EQ(Math::miniv(v, 1), 3);
    EXPECT_EQ(Math::maxiv(v, 2), 3);
}

TEST(Math, MinfvAndMaxfvScanWholeArray)
{
    float v[] = {3.5f, -1.25f, 7.75f, 2.0f};
    EXPECT_EQ(Math::minfv(v, 4), -1.25f);
    EXPECT_EQ(Math::maxfv(v, 4), 7.75f);
    EXPECT_EQ(Math::minfv(v, 1), 3.5f);
}

TEST(Math, MinMaxOfEmptyCountReturnsFirstElement)
{
    int vi[] = {3, -1, 7};
    float vf[] = {3.5f, -1.0f, 7.0f};
    EXPECT_EQ(Math::miniv(vi, 0), 3);
    EXPECT_EQ(Math::maxiv(vi, 0), 3);
    EXPECT_EQ(Math::minfv(vf, 0), 3.5f);
    EXPECT_EQ(Math::maxfv(vf, 0), 3.5f);
}

TEST(Math, MinmaxivWritesMinimumThenMaximum)
{
    int v[] = {3, -1, 7, 2};
    int out[2] = {100, 100};
    Math::minmaxiv(out, v, 4);
    EXPECT_EQ(out[0], -1);
    EXPECT_EQ(out[1], 7);
    Math::minmaxiv(out, v, 0);
    EXPECT_EQ(out[0], 3);
    EXPECT_EQ(out[1], 3);
}

TEST(Math, MinmaxfvWritesMinimumThenMaximum)
{
    float v[] = {0.5f, 4.0f, -2.0f};
    float out[2] = {100.0f, 100.0f};
    Math::minmaxfv(out, v, 3);
    EXPECT_EQ(out[0], -2.0f);
    EXPECT_EQ(out[1], 4.0f);
    Math::minmaxfv(out, v, 0);
    EXPECT_EQ(out[0], 0.5f);
    EXPECT_EQ(out[1], 0.5f);
}

// ---- Clamping ----

TEST(Math, ClampiLimitsToRange)
{
    EXPECT_EQ(Math::clampi(5, 0, 10), 5);
    EXPECT_EQ(Math::clampi(-3, 0, 10), 0);
    EXPECT_EQ(Math::clampi(12, 0, 10), 10);
    EXPECT_EQ(Math::clampi(0, 0, 10), 0);
    EXPECT_EQ(Math::clampi(10, 0, 10), 10);
}

TEST(Math, ClampiTestsUpperBoundFirst)
{
    // lo 10 > hi 0: 5 is above hi, so hi; -5 is not above hi and not above lo, so lo.
    EXPECT_EQ(Math::clampi(5, 10, 0), 0);
    EXPECT_EQ(Math::clampi(-5, 10, 0), 10);
}

TEST(Math, ClampfLimitsToRange)
{
    EXPECT_EQ(Math::clampf(0.5f, 0.0f, 1.0f), 0.5f);
    EXPECT_EQ(Math::clampf(-0.5f, 0.0f, 1.0f), 0.0f);
    EXPECT_EQ(Math::clampf(1.5f, 0.0f, 1.0f), 1.0f);
    EXPECT_EQ(Math::clampf(400.0f, 0.0f, 350.0f), 350.0f);
}

TEST(Math, ClampfTestsUpperBoundFirst)
{
    EXPECT_EQ(Math::clampf(5.0f, 10.0f, 0.0f), 0.0f);
    EXPECT_EQ(Math::clampf(-5.0f, 10.0f, 0.0f), 10.0f);
    // v = 0 below lo = 0.35 and below hi: lo.
    EXPECT_FLOAT_EQ(Math::clampf(0.0f, 0.35f, 0.95f), 0.35f);
}

// ---- Wrapping and bouncing ----

TEST(Math, WrapiBringsNegativeIntoRange)
{
    EXPECT_EQ(Math::wrapi(-1, 0, 10), 9);
    EXPECT_EQ(Math::wrapi(-11, 0, 10), 9);
    EXPECT_EQ(Math::wrapi(-10, 0, 10), 0);
}

TEST(Math, WrapiExcludesUpperBound)
{
    EXPECT_EQ(Math::wrapi(10, 0, 10), 0);
    EXPECT_EQ(Math::wrapi(25, 0, 10), 5);
    EXPECT_EQ(Math::wrapi(9, 0, 10), 9);
}

TEST(Math, WrapiAcceptsBoundsInEitherOrder)
{
    EXPECT_EQ(Math::wrapi(5, 10, 0), 5);
    EXPECT_EQ(Math::wrapi(12, 10, 0), 2);
    EXPECT_EQ(Math::wrapi(-1, 10, 0), 9);
}

TEST(Math, WrapiWorksWithNegativeBounds)
{
    // [-5, 5): -7 + 10 = 3
    EXPECT_EQ(Math::wrapi(-7, -5, 5), 3);
    EXPECT_EQ(Math::wrapi(5, -5, 5), -5);
}

TEST(Math, WrapiWithEqualBoundsReturnsBound)
{
    EXPECT_EQ(Math::wrapi(3, 4, 4), 4);
    EXPECT_EQ(Math::wrapi(-100, 4, 4), 4);
}

TEST(Math, WrapfBringsValueIntoRange)
{
    EXPECT_EQ(Math::wrapf(12.5f, 0.0f, 10.0f), 2.5f);
    EXPECT_EQ(Math::wrapf(-2.5f, 0.0f, 10.0f), 7.5f);
    EXPECT_EQ(Math::wrapf(4100.0f, 0.0f, 4096.0f), 4.0f);
    EXPECT_EQ(Math::wrapf(3.0f, 0.0f, 10.0f), 3.0f);
}

TEST(Math, WrapfExcludesUpperBoundForPositiveValues)
{
    EXPECT_EQ(Math::wrapf(10.0f, 0.0f, 10.0f), 0.0f);
    EXPECT_EQ(Math::wrapf(0.0f, 0.0f, 10.0f), 0.0f);
}

TEST(Math, WrapfOfNegativeZeroGivesUpperBound)
{
    EXPECT_EQ(Math::wrapf(-0.0f, 0.0f, 10.0f), 10.0f);
}

TEST(Math, WrapfOfNegativeMultipleOfRangeGivesUpperBound)
{
    // The truncated remainder of -10 by 10 is -0, whose sign bit adds the range.
    EXPECT_EQ(Math::wrapf(-10.0f, 0.0f, 10.0f), 10.0f);
}

TEST(Math, WrapfAcceptsBoundsInEitherOrder)
{
    EXPECT_EQ(Math::wrapf(5.0f, 10.0f, 0.0f), 5.0f);
    EXPECT_EQ(Math::wrapf(12.0f, 10.0f, 0.0f), 2.0f);
}

TEST(Math, WrapfWithEqualBoundsReturnsBound)
{
    EXPECT_EQ(Math::wrapf(3.0f, 4.0f, 4.0f), 4.0f);
}

TEST(Math, WrapfWorksWithOffsetBounds)
{
    // [-16, 1296): a star margin of 16 around a 1280 wide screen.
    EXPECT_EQ(Math::wrapf(-20.0f, -16.0f, 1296.0f), 1292.0f);
    EXPECT_EQ(Math::wrapf(1300.0f, -16.0f, 1296.0f), -12.0f);
}

TEST(Math, BounceIntReflectsAtUpperBound)
{
    EXPECT_EQ(Math::bounce(12, 0, 10), 8);
    EXPECT_EQ(Math::bounce(25, 0, 10), 5);
    EXPECT_EQ(Math::bounce(10, 0, 10), 10);
    EXPECT_EQ(Math::bounce(20, 0, 10), 0);
    EXPECT_EQ(Math::bounce(5, 0, 10), 5);
}

TEST(Math, BounceIntReflectsNegativeValues)
{
    // wrap(-3, 0, 20) = 17, reflected: 20 - 17 = 3
    EXPECT_EQ(Math::bounce(-3, 0, 10), 3);
}

TEST(Math, BounceFloatReflectsAtUpperBound)
{
    EXPECT_EQ(Math::bounce(12.0f, 0.0f, 10.0f), 8.0f);
    EXPECT_EQ(Math::bounce(25.0f, 0.0f, 10.0f), 5.0f);
    EXPECT_EQ(Math::bounce(12.5f, 0.0f, 10.0f), 7.5f);
    EXPECT_EQ(Math::bounce(-3.0f, 0.0f, 10.0f), 3.0f);
    EXPECT_EQ(Math::bounce(4.0f, 0.0f, 10.0f), 4.0f);
}

// ---- Interpolation ----

TEST(Math, LerpGoesFromAToB)
{
    EXPECT_EQ(Math::lerp(0.0f, 2.0f, 10.0f), 2.0f);
    EXPECT_EQ(Math::lerp(0.25f, 2.0f, 10.0f), 4.0f);
    EXPECT_EQ(Math::lerp(1.0f, 2.0f, 10.0f), 10.0f);
    EXPECT_EQ(Math::lerp(0.5f, 10.0f, 0.0f), 5.0f);
}

TEST(Math, LerpExtrapolatesOutsideUnitRange)
{
    EXPECT_EQ(Math::lerp(2.0f, 0.0f, 10.0f), 20.0f);
    EXPECT_EQ(Math::lerp(-1.0f, 0.0f, 10.0f), -10.0f);
}

TEST(Math, LerpOfVectorsWorksPerComponent)
{
    vec2 a = Math::lerp(0.25f, vec2(0.0f, 10.0f), vec2(8.0f, 30.0f));
    EXPECT_EQ(a.x, 2.0f);
    EXPECT_EQ(a.y, 15.0f);
    vec3 b = Math::lerp(0.5f, vec3(0.0f, 10.0f, -4.0f), vec3(8.0f, 30.0f, 4.0f));
    EXPECT_EQ(b.x, 4.0f);
    EXPECT_EQ(b.y, 20.0f);
    EXPECT_EQ(b.z, 0.0f);
}

TEST(Math, SinLerpHitsEndsAndMiddle)
{
    EXPECT_FLOAT_EQ(Math::sin_lerp(0.0f, 2.0f, 10.0f), 2.0f);
    EXPECT_FLOAT_EQ(Math::sin_lerp(0.5f, 2.0f, 10.0f), 6.0f);
    EXPECT_FLOAT_EQ(Math::sin_lerp(1.0f, 2.0f, 10.0f), 10.0f);
}

TEST(Math, SinLerpEasesIn)
{
    // s = (sin(pi/4 + 3pi/2) + 1) / 2 = (1 - sqrt(2)/2) / 2
    EXPECT_NEAR(Math::sin_lerp(0.25f, 0.0f, 10.0f), 1.4644661f, 1e-6f);
    EXPECT_NEAR(Math::sin_lerp(0.75f, 0.0f, 10.0f), 8.5355339f, 1e-5f);
}

TEST(Math, SinLerpOutsideUnitRangeIsPlainLerp)
{
    EXPECT_EQ(Math::sin_lerp(1.5f, 0.0f, 10.0f), 15.0f);
    EXPECT_EQ(Math::sin_lerp(-0.5f, 0.0f, 10.0f), -5.0f);
}

TEST(Math, SinhLerpEasesOut)
{
    // s = sin(t * pi / 2); sin(pi/4) = 0.70710678
    EXPECT_NEAR(Math::sinh_lerp(0.5f, 0.0f, 100.0f), 70.710678f, 1e-4f);
    EXPECT_FLOAT_EQ(Math::sinh_lerp(0.0f, 5.0f, 100.0f), 5.0f);
    EXPECT_FLOAT_EQ(Math::sinh_lerp(1.0f, 5.0f, 100.0f), 100.0f);
}

TEST(Math, SinhLerpOutsideUnitRangeIsPlainLerp)
{
    EXPECT_EQ(Math::sinh_lerp(1.5f, 0.0f, 10.0f), 15.0f);
    EXPECT_EQ(Math::sinh_lerp(-1.0f, 0.0f, 10.0f), -10.0f);
}

TEST(Math, SinlLerpEasesIn)
{
    // s = 1 - cos(t * pi / 2); 1 - cos(pi/4) = 0.29289322
    EXPECT_NEAR(Math::sinl_lerp(0.5f, 0.0f, 100.0f), 29.289322f, 1e-4f);
    EXPECT_FLOAT_EQ(Math::sinl_lerp(0.0f, 5.0f, 100.0f), 5.0f);
    EXPECT_FLOAT_EQ(Math::sinl_lerp(1.0f, 5.0f, 100.0f), 100.0f);
}

TEST(Math, SinlLerpOutsideUnitRangeIsPlainLerp)
{
    EXPECT_EQ(Math::sinl_lerp(2.0f, 0.0f, 10.0f), 20.0f);
    EXPECT_EQ(Math::sinl_lerp(-0.5f, 0.0f, 10.0f), -5.0f);
}

TEST(Math, EasedLerpsOfVectorsWorkPerComponent)
{
    vec2 a = Math::sin_lerp(0.5f, vec2(0.0f, 10.0f), vec2(10.0f, 20.0f));
    EXPECT_FLOAT_EQ(a.x, 5.0f);
    EXPECT_FLOAT_EQ(a.y, 15.0f);
    vec3 b = Math::sin_lerp(1.0f, vec3(0.0f, 1.0f, 2.0f), vec3(4.0f, 5.0f, 6.0f));
    EXPECT_FLOAT_EQ(b.x, 4.0f);
    EXPECT_FLOAT_EQ(b.y, 5.0f);
    EXPECT_FLOAT_EQ(b.z, 6.0f);

    vec2 c = Math::sinh_lerp(0.5f, vec2(0.0f, 100.0f), vec2(100.0f, 0.0f));
    EXPECT_NEAR(c.x, 70.710678f, 1e-4f);
    EXPECT_NEAR(c.y, 29.289322f, 1e-4f);
    vec3 d = Math::sinh_lerp(2.0f, vec3(0.0f, 0.0f, 0.0f), vec3(1.0f, 2.0f, 3.0f));
    EXPECT_EQ(d.x, 2.0f);
    EXPECT_EQ(d.y, 4.0f);
    EXPECT_EQ(d.z, 6.0f);

    vec2 e = Math::sinl_lerp(0.5f, vec2(0.0f, 100.0f), vec2(100.0f, 0.0f));
    EXPECT_NEAR(e.x, 29.289322f, 1e-4f);
    EXPECT_NEAR(e.y, 70.710678f, 1e-4f);
    vec3 f = Math::sinl_lerp(-1.0f, vec3(0.0f, 0.0f, 0.0f), vec3(1.0f, 2.0f, 3.0f));
    EXPECT_EQ(f.x, -1.0f);
    EXPECT_EQ(f.y, -2.0f);
    EXPECT_EQ(f.z, -3.0f);
}

TEST(Math, Scurve3IsCubicSmoothstep)
{
    EXPECT_EQ(Math::scurve3(0.0f), 0.0f);
    EXPECT_EQ(Math::scurve3(0.25f), 0.0625f * 2.5f);
    EXPECT_EQ(Math::scurve3(0.5f), 0.5f);
    EXPECT_EQ(Math::scurve3(1.0f), 1.0f);
}

TEST(Math, Scurve5IsQuinticSmoothstep)
{
    EXPECT_EQ(Math::scurve5(0.0f), 0.0f);
    // 6/1024 - 15/256 + 10/64
    EXPECT_EQ(Math::scurve5(0.25f), 0.103515625f);
    EXPECT_EQ(Math::scurve5(0.5f), 0.5f);
    EXPECT_EQ(Math::scurve5(1.0f), 1.0f);
}

// ---- Angles ----

TEST(Math, ToRadianMultipliesByFixedFactor)
{
    EXPECT_EQ(Math::toRadian(180.0f), 180.0f * 0.017453292f);
    EXPECT_EQ(Math::toRadian(0.0f), 0.0f);
    EXPECT_NEAR(Math::toRadian(180.0f), 3.14159265f, 1e-6f);
}

TEST(Math, ToDegreeMultipliesByFixedFactor)
{
    EXPECT_EQ(Math::toDegree(1.0f), 57.29578f);
    EXPECT_EQ(Math::toDegree(2.0f), 2.0f * 57.29578f);
    EXPECT_NEAR(Math::toDegree(3.14159265f), 180.0f, 1e-4f);
}

TEST(Math, AngleToTheRightIs360)
{
    EXPECT_EQ(Math::angle(vec2(0.0f, 0.0f), vec2(1.0f, 0.0f)), 360.0f);
    EXPECT_EQ(Math::angle(vec2(5.0f, 5.0f), vec2(9.0f, 5.0f)), 360.0f);
}

TEST(Math, AngleUpTheScreenIs90)
{
    EXPECT_FLOAT_EQ(Math::angle(vec2(0.0f, 0.0f), vec2(0.0f, -1.0f)), 90.0f);
}

TEST(Math, AngleDownTheScreenIs270)
{
    EXPECT_FLOAT_EQ(Math::angle(vec2(0.0f, 0.0f), vec2(0.0f, 1.0f)), 270.0f);
}

TEST(Math, AngleToTheLeftIs180)
{
    EXPECT_FLOAT_EQ(Math::angle(vec2(0.0f, 0.0f), vec2(-1.0f, 0.0f)), 180.0f);
}

TEST(Math, AngleDiagonalsFallInTheirQuadrants)
{
    EXPECT_FLOAT_EQ(Math::angle(vec2(0.0f, 0.0f), vec2(1.0f, -1.0f)), 45.0f);
    EXPECT_FLOAT_EQ(Math::angle(vec2(0.0f, 0.0f), vec2(-1.0f, -1.0f)), 135.0f);
    EXPECT_FLOAT_EQ(Math::angle(vec2(0.0f, 0.0f), vec2(-1.0f, 1.0f)), 225.0f);
    EXPECT_FLOAT_EQ(Math::angle(vec2(0.0f, 0.0f), vec2(1.0f, 1.0f)), 315.0f);
    // atan(1/2) = 26.565051 degrees
    EXPECT_NEAR(Math::angle(vec2(1.0f, 1.0f), vec2(3.0f, 0.0f)), 26.565051f, 1e-4f);
    EXPECT_NEAR(Math::angle(vec2(1.0f, 1.0f), vec2(3.0f, 2.0f)), 333.43495f, 1e-3f);
}

TEST(Math, AngleOfSamePointIs360)
{
    EXPECT_EQ(Math::angle(vec2(2.0f, 3.0f), vec2(2.0f, 3.0f)), 360.0f);
}

// ---- Powers of two ----

TEST(Math, GetNextPow2RoundsUp)
{
    EXPECT_EQ(Math::getNextPow2(0), 1u);
    EXPECT_EQ(Math::getNextPow2(1), 1u);
    EXPECT_EQ(Math::getNextPow2(2), 2u);
    EXPECT_EQ(Math::getNextPow2(3), 4u);
    EXPECT_EQ(Math::getNextPow2(5), 8u);
    EXPECT_EQ(Math::getNextPow2(1024), 1024u);
    EXPECT_EQ(Math::getNextPow2(1025), 2048u);
    EXPECT_EQ(Math::getNextPow2(0x80000000u), 0x80000000u);
}

TEST(Math, GetClosestPow2RoundsDown)
{
    EXPECT_EQ(Math::getClosestPow2(7), 4u);
    EXPECT_EQ(Math::getClosestPow2(8), 8u);
    EXPECT_EQ(Math::getClosestPow2(3), 2u);
    EXPECT_EQ(Math::getClosestPow2(1000), 512u);
    EXPECT_EQ(Math::getClosestPow2(0x80000000u), 0x80000000u);
}

TEST(Math, GetClosestPow2BelowTwoReturnsInput)
{
    EXPECT_EQ(Math::getClosestPow2(0), 0u);
    EXPECT_EQ(Math::getClosestPow2(1), 1u);
}

TEST(Math, GetShiftPow2GivesSmallestCoveringShift)
{
    EXPECT_EQ(Math::getShiftPow2(0), 0u);
    EXPECT_EQ(Math::getShiftPow2(1), 0u);
    EXPECT_EQ(Math::getShiftPow2(2), 1u);
    EXPECT_EQ(Math::getShiftPow2(3), 2u);
    EXPECT_EQ(Math::getShiftPow2(1024), 10u);
    EXPECT_EQ(Math::getShiftPow2(1025), 11u);
    EXPECT_EQ(Math::getShiftPow2(0x80000000u), 31u);
}

TEST(Math, GetShiftPow2WithoutCoveringShiftIs31)
{
    EXPECT_EQ(Math::getShiftPow2(0x80000001u), 31u);
    EXPECT_EQ(Math::getShiftPow2(0xFFFFFFFFu), 31u);
}

TEST(Math, IsPowerOf2AcceptsOnlyExactPowers)
{
    EXPECT_FALSE(Math::isPowerOf2(0));
    EXPECT_TRUE(Math::isPowerOf2(1));
    EXPECT_TRUE(Math::isPowerOf2(2));
    EXPECT_FALSE(Math::isPowerOf2(3));
    EXPECT_FALSE(Math::isPowerOf2(6));
    EXPECT_TRUE(Math::isPowerOf2(1024));
    EXPECT_FALSE(Math::isPowerOf2(1000));
    EXPECT_TRUE(Math::isPowerOf2(0x80000000u));
    EXPECT_FALSE(Math::isPowerOf2(0x80000001u));
}

// ---- Fixed point ----

TEST(Math, ToFixedScalesByTwoToTheBits)
{
    // i = 1 << 4 = 16; 16 + trunc(16 * 1.5 - 16) = 24
    EXPECT_EQ(Math::toFixed(1.5f, 4), 24);
    // i = 2 << 8 = 512; 512 + trunc(256 * 2.75 - 512) = 704
    EXPECT_EQ(Math::toFixed(2.75f, 8), 704);
    EXPECT_EQ(Math::toFixed(3.0f, 0), 3);
}

TEST(Math, ToFixedTruncatesFraction)
{
    // 16 * 0.3 = 4.8
    EXPECT_EQ(Math::toFixed(0.3f, 4), 4);
    EXPECT_EQ(Math::toFixed(-0.3f, 4), -4);
}

TEST(Math, ToFixedOfNegativeValue)
{
    // i = -1 << 4 = -16; -16 + trunc(-24 + 16) = -24
    EXPECT_EQ(Math::toFixed(-1.5f, 4), -24);
}

TEST(Math, ToFixedOfZeroIsZero)
{
    EXPECT_EQ(Math::toFixed(0.0f, 8), 0);
}

TEST(Math, ToFloatDividesTwoToTheBitsByFraction)
{
    // 0x18: fraction 8, integer 1: 16 / 8 + 1
    EXPECT_EQ(Math::toFloat(0x18, 4), 3.0f);
    // 0x14: fraction 4: 16 / 4 + 1
    EXPECT_EQ(Math::toFloat(0x14, 4), 5.0f);
    // 0x1D with 2 bits: fraction 1, integer 7: 4 / 1 + 7
    EXPECT_EQ(Math::toFloat(0x1D, 2), 11.0f);
}

TEST(Math, ToFloatShiftsIntegerPartArithmetically)
{
    // -8: fraction (-8 & 15) = 8, integer -8 >> 4 = -1: 16 / 8 - 1
    EXPECT_EQ(Math::toFloat(-8, 4), 1.0f);
}

TEST(Math, ToFloatWithZeroFractionIsInfinite)
{
    float f = Math::toFloat(0x10, 4);
    EXPECT_TRUE(std::isinf(f));
    EXPECT_GT(f, 0.0f);
}

TEST(Math, ToFloatOfZeroIsZero)
{
    EXPECT_EQ(Math::toFloat(0, 4), 0.0f);
}

TEST(Math, GaussTakesRootOfTwoPiSigma)
{
    // exp(-x^2 / (2 sigma^2)) / sqrt(2 pi sigma)
    EXPECT_NEAR(Math::gauss(0.0f, 1.0f), 0.39894228f, 1e-7f);
    // 1 / sqrt(8 pi), not 1 / (4 sqrt(2 pi)) = 0.0997
    EXPECT_NEAR(Math::gauss(0.0f, 4.0f), 0.19947114f, 1e-7f);
    EXPECT_NEAR(Math::gauss(2.0f, 1.0f), 0.053990967f, 1e-8f);
    EXPECT_NEAR(Math::gauss(3.0f, 2.0f), 0.091582770f, 1e-8f);
    EXPECT_EQ(Math::gauss(-3.0f, 2.0f), Math::gauss(3.0f, 2.0f));
}

// ---- Vector algebra ----

TEST(Math, DotMultipliesAndSums)
{
    EXPECT_EQ(Math::dot(vec2(1.0f, 2.0f), vec2(3.0f, 4.0f)), 11.0f);
    EXPECT_EQ(Math::dot(vec3(1.0f, 2.0f, 3.0f), vec3(4.0f, 5.0f, 6.0f)), 32.0f);
    EXPECT_EQ(Math::dot(vec2(1.0f, 0.0f), vec2(0.0f, 1.0f)), 0.0f);
}

TEST(Math, CrossIsRightHanded)
{
    vec3 z = Math::cross(vec3(1.0f, 0.0f, 0.0f), vec3(0.0f, 1.0f, 0.0f));
    EXPECT_EQ(z.x, 0.0f);
    EXPECT_EQ(z.y, 0.0f);
    EXPECT_EQ(z.z, 1.0f);
    // (2*6 - 3*5, 3*4 - 1*6, 1*5 - 2*4)
    vec3 c = Math::cross(vec3(1.0f, 2.0f, 3.0f), vec3(4.0f, 5.0f, 6.0f));
    EXPECT_EQ(c.x, -3.0f);
    EXPECT_EQ(c.y, 6.0f);
    EXPECT_EQ(c.z, -3.0f);
}

TEST(Math, RotateVec2TurnsByAngle)
{
    const float a = 0.5f;
    const float c = std::cos(a);
    const float s = std::sin(a);
    vec2 r = Math::rotate(vec2(2.0f, 3.0f), a);
    EXPECT_FLOAT_EQ(r.x, 2.0f * c - 3.0f * s);
    EXPECT_FLOAT_EQ(r.y, 3.0f * c + 2.0f * s);
}

TEST(Math, RotateVec2QuarterTurnTakesXToY)
{
    vec2 r = Math::rotate(vec2(1.0f, 0.0f), 1.5707963f);
    EXPECT_NEAR(r.x, 0.0f, 1e-6f);
    EXPECT_NEAR(r.y, 1.0f, 1e-6f);
}

TEST(Math, RotateVec2ByZeroKeepsVector)
{
    vec2 r = Math::rotate(vec2(2.0f, -3.0f), 0.0f);
    EXPECT_EQ(r.x, 2.0f);
    EXPECT_EQ(r.y, -3.0f);
}

TEST(Math, RotateEulerAppliesEulerRows)
{
    const float a = 0.3f;
    const float b = 0.5f;
    const float c = 0.7f;
    const float ca = std::cos(a);
    const float sa = std::sin(a);
    const float cb = std::cos(b);
    const float sb = std::sin(b);
    const float cc = std::cos(c);
    const float sc = std::sin(c);
    const float x = 1.0f;
    const float y = 2.0f;
    const float z = 3.0f;
    vec3 r = Math::rotate(vec3(x, y, z), a, b, c);
    EXPECT_FLOAT_EQ(r.x, cb * cc * x + cb * sc * y - sb * z);
    EXPECT_FLOAT_EQ(r.y, (sa * sb * cc - ca * sc) * x + (sa * sb * sc + ca * cc) * y + sa * cb * z);
    EXPECT_FLOAT_EQ(r.z, (ca * sb * cc + sa * sc) * x + (ca * sb * sc - sa * cc) * y + ca * cb * y);
}

TEST(Math, RotateEulerLastTermReadsYInsteadOfZ)
{
    // With all angles 0 the matrix would be the identity, but z' = ... + ca*cb*y.
    vec3 fromZ = Math::rotate(vec3(0.0f, 0.0f, 1.0f), 0.0f, 0.0f, 0.0f);
    EXPECT_EQ(fromZ.x, 0.0f);
    EXPECT_EQ(fromZ.y, 0.0f);
    EXPECT_EQ(fromZ.z, 0.0f);
    vec3 fromY = Math::rotate(vec3(0.0f, 1.0f, 0.0f), 0.0f, 0.0f, 0.0f);
    EXPECT_EQ(fromY.x, 0.0f);
    EXPECT_EQ(fromY.y, 1.0f);
    EXPECT_EQ(fromY.z, 1.0f);
}

TEST(Math, RotateAboutAxisAppliesAxisMatrix)
{
    const float ax = 0.0f;
    const float ay = 0.6f;
    const float az = 0.8f;
    const float a = 0.5f;
    const float c = std::cos(a);
    const float s = std::sin(a);
    const float t = 1.0f - c;
    const float x = 3.0f;
    const float y = -1.0f;
    const float z = 2.0f;
    vec3 r = Math::rotate(vec3(x, y, z), vec3(ax, ay, az), a);
    // R * v, R's columns as for the axis rotation of mat4.
    EXPECT_FLOAT_EQ(r.x, (c + ax * ax * t) * x + (ay * az * t - az * s) * y + (ax * az * t + ay * s) * z);
    EXPECT_FLOAT_EQ(r.y, (ay * az * t + az * s) * x + (c + ay * ay * t) * y + (ay * az * t - ax * s) * z);
    EXPECT_FLOAT_EQ(r.z, (ax * az * t - ay * s) * x + (ay * az * t + ax * s) * y + (c + az * az * t) * z);
}

TEST(Math, RotateAboutZAxisTurnsXTowardsY)
{
    const float a = 0.5f;
    vec3 r = Math::rotate(vec3(1.0f, 0.0f, 0.0f), vec3(0.0f, 0.0f, 1.0f), a);
    EXPECT_FLOAT_EQ(r.x, std::cos(a));
    EXPECT_FLOAT_EQ(r.y, std::sin(a));
    EXPECT_EQ(r.z, 0.0f);
}

TEST(Math, RotateAboutAxisUsesYzProductInXyCrossTerms)
{
    // Axis (1, 1, 0): y' of (1, 0, 0) is ay*az*t + az*s = 0 (a textbook rotation gives 1 - c).
    const float a = 0.5f;
    vec3 r = Math::rotate(vec3(1.0f, 0.0f, 0.0f), vec3(1.0f, 1.0f, 0.0f), a);
    EXPECT_FLOAT_EQ(r.x, std::cos(a) + (1.0f - std::cos(a)));
    EXPECT_EQ(r.y, 0.0f);
    EXPECT_FLOAT_EQ(r.z, -std::sin(a));
}

TEST(Math, DistanceToMeasuresFromInfiniteLine)
{
    // |(1, 3) x (4, 0)| / 4 = 12 / 4
    EXPECT_EQ(Math::distanceTo(vec2(0.0f, 0.0f), vec2(4.0f, 0.0f), vec2(1.0f, 3.0f)), 3.0f);
    // Beyond the end of the segment the line still counts.
    EXPECT_EQ(Math::distanceTo(vec2(0.0f, 0.0f), vec2(4.0f, 0.0f), vec2(10.0f, -2.0f)), 2.0f);
    // |(4, -3) x (3, 4)| / 5 = |16 + 9| / 5
    EXPECT_EQ(Math::distanceTo(vec2(0.0f, 0.0f), vec2(3.0f, 4.0f), vec2(4.0f, -3.0f)), 5.0f);
    EXPECT_EQ(Math::distanceTo(vec2(1.0f, 1.0f), vec2(4.0f, 5.0f), vec2(7.0f, 9.0f)), 0.0f);
}

TEST(Math, DistanceToIn3DIsAlwaysZero)
{
    EXPECT_EQ(Math::distanceTo(vec3(0.0f, 0.0f, 0.0f), vec3(1.0f, 0.0f, 0.0f), vec3(0.0f, 5.0f, 0.0f)), 0.0f);
}

// ---- Ray against circle ----

TEST(Math, NearIntersectPointIsWhereRayEntersCircle)
{
    vec2 p = Math::getNearIntersectPoint(vec2(-10.0f, 0.0f), vec2(0.0f, 0.0f), vec2(0.0f, 0.0f), 2.0f);
    EXPECT_FLOAT_EQ(p.x, -2.0f);
    EXPECT_FLOAT_EQ(p.y, 0.0f);
}

TEST(Math, FarIntersectPointIsWhereRayLeavesCircle)
{
    vec2 p = Math::getFarIntersectPoint(vec2(-10.0f, 0.0f), vec2(0.0f, 0.0f), vec2(0.0f, 0.0f), 2.0f);
    EXPECT_FLOAT_EQ(p.x, 2.0f);
    EXPECT_FLOAT_EQ(p.y, 0.0f);
}

TEST(Math, IntersectPointOfMissedCircleIsZero)
{
    vec2 n = Math::getNearIntersectPoint(vec2(-10.0f, 0.0f), vec2(0.0f, 0.0f), vec2(0.0f, 5.0f), 2.0f);
    EXPECT_EQ(n.x, 0.0f);
    EXPECT_EQ(n.y, 0.0f);
    vec2 f = Math::getFarIntersectPoint(vec2(-10.0f, 0.0f), vec2(0.0f, 0.0f), vec2(0.0f, 5.0f), 2.0f);
    EXPECT_EQ(f.x, 0.0f);
    EXPECT_EQ(f.y, 0.0f);
}

TEST(Math, IntersectPointUsesDirectionNotDistanceToTarget)
{
    // `to` short of the circle: only the direction counts.
    vec2 p = Math::getNearIntersectPoint(vec2(0.0f, -10.0f), vec2(0.0f, -7.0f), vec2(0.0f, 0.0f), 2.0f);
    EXPECT_FLOAT_EQ(p.x, 0.0f);
    EXPECT_FLOAT_EQ(p.y, -2.0f);
    vec2 q = Math::getNearIntersectPoint(vec2(1.0f, -10.0f), vec2(1.0f, -7.0f), vec2(1.0f, 3.0f), 5.0f);
    EXPECT_FLOAT_EQ(q.x, 1.0f);
    EXPECT_FLOAT_EQ(q.y, -2.0f);
}

TEST(Math, IntersectPointsBehindStartAreReturned)
{
    // Ray from (10, 0) pointing away from the circle: t = -12 and -8.
    vec2 n = Math::getNearIntersectPoint(vec2(10.0f, 0.0f), vec2(20.0f, 0.0f), vec2(0.0f, 0.0f), 2.0f);
    EXPECT_FLOAT_EQ(n.x, -2.0f);
    EXPECT_FLOAT_EQ(n.y, 0.0f);
    vec2 f = Math::getFarIntersectPoint(vec2(10.0f, 0.0f), vec2(20.0f, 0.0f), vec2(0.0f, 0.0f), 2.0f);
    EXPECT_FLOAT_EQ(f.x, 2.0f);
    EXPECT_FLOAT_EQ(f.y, 0.0f);
}

TEST(Math, IntersectPointOfOffCentreChord)
{
    // Line y = 3 through a circle of radius 5: x = -4 and 4.
    vec2 n = Math::getNearIntersectPoint(vec2(-10.0f, 3.0f), vec2(0.0f, 3.0f), vec2(0.0f, 0.0f), 5.0f);
    EXPECT_FLOAT_EQ(n.x, -4.0f);
    EXPECT_FLOAT_EQ(n.y, 3.0f);
    vec2 f = Math::getFarIntersectPoint(vec2(-10.0f, 3.0f), vec2(0.0f, 3.0f), vec2(0.0f, 0.0f), 5.0f);
    EXPECT_FLOAT_EQ(f.x, 4.0f);
    EXPECT_FLOAT_EQ(f.y, 3.0f);
}

TEST(Math, SphereIntersectPointsFollowCircleRule)
{
    vec3 n = Math::getNearIntersectPoint(vec3(-10.0f, 0.0f, 0.0f), vec3(0.0f, 0.0f, 0.0f),
                                         vec3(0.0f, 0.0f, 0.0f), 2.0f);
    EXPECT_FLOAT_EQ(n.x, -2.0f);
    EXPECT_FLOAT_EQ(n.y, 0.0f);
    EXPECT_FLOAT_EQ(n.z, 0.0f);
    vec3 f = Math::getFarIntersectPoint(vec3(-10.0f, 0.0f, 0.0f), vec3(0.0f, 0.0f, 0.0f),
                                        vec3(0.0f, 0.0f, 0.0f), 2.0f);
    EXPECT_FLOAT_EQ(f.x, 2.0f);
    EXPECT_FLOAT_EQ(f.y, 0.0f);
    EXPECT_FLOAT_EQ(f.z, 0.0f);
    vec3 z = Math::getNearIntersectPoint(vec3(0.0f, 0.0f, -10.0f), vec3(0.0f, 0.0f, -9.0f),
                                         vec3(0.0f, 0.0f, 0.0f), 3.0f);
    EXPECT_FLOAT_EQ(z.z, -3.0f);
}

TEST(Math, SphereIntersectPointOfMissedSphereIsZero)
{
    vec3 n = Math::getNearIntersectPoint(vec3(-10.0f, 0.0f, 0.0f), vec3(0.0f, 0.0f, 0.0f),
                                         vec3(0.0f, 0.0f, 5.0f), 2.0f);
    EXPECT_EQ(n.x, 0.0f);
    EXPECT_EQ(n.y, 0.0f);
    EXPECT_EQ(n.z, 0.0f);
    vec3 f = Math::getFarIntersectPoint(vec3(-10.0f, 0.0f, 0.0f), vec3(0.0f, 0.0f, 0.0f),
                                        vec3(0.0f, 0.0f, 5.0f), 2.0f);
    EXPECT_EQ(f.x, 0.0f);
    EXPECT_EQ(f.y, 0.0f);
    EXPECT_EQ(f.z, 0.0f);
}

TEST(Math, WrapfInsideTheRangeStillRoundsThroughTheLowerBound) {
    // lo + (v - lo): a tiny value near 0 in [-50, 1330) comes back as exactly 0.
    EXPECT_EQ(Math::wrapf(1.0e-9f, -50.0f, 1330.0f), 0.0f);
    EXPECT_EQ(Math::wrapf(640.25f, -50.0f, 1330.0f), 640.25f);
}

TEST(Math, WrapfAgreesWithTheRemainderFormulaInAndOutOfRange) {
    const float lo = -50.0f;
    const float hi = 1330.0f;
    for (float v = -3000.0f; v <= 3000.0f; v += 0.37f) {
        const float r = std::fmod(v - lo, hi - lo);
        const float expected = std::signbit(r) ? lo + r + (hi - lo) : lo + r;
        ASSERT_EQ(Math::wrapf(v, lo, hi), expected) << v;
    }
}
