#include "engine/Vector.h"

#include <cmath>

#include <gtest/gtest.h>

using orvel::vec1;
using orvel::vec2;
using orvel::vec3;
using orvel::vec4;

// ---- Construction and layout ----

TEST(Vector, DefaultConstructionGivesZero)
{
    vec1 a;
    vec2 b;
    vec3 c;
    vec4 d;
    EXPECT_EQ(a.x, 0.0f);
    EXPECT_EQ(b.x, 0.0f);
    EXPECT_EQ(b.y, 0.0f);
    EXPECT_EQ(c.x, 0.0f);
    EXPECT_EQ(c.y, 0.0f);
    EXPECT_EQ(c.z, 0.0f);
    EXPECT_EQ(d.x, 0.0f);
    EXPECT_EQ(d.y, 0.0f);
    EXPECT_EQ(d.z, 0.0f);
    EXPECT_EQ(d.w, 0.0f);
}

TEST(Vector, ComponentsAreConsecutiveFloatsForUniformUpload)
{
    vec4 v(1.0f, 2.0f, 3.0f, 4.0f);
    const float* p = &v.x;
    EXPECT_EQ(p[0], 1.0f);
    EXPECT_EQ(p[1], 2.0f);
    EXPECT_EQ(p[2], 3.0f);
    EXPECT_EQ(p[3], 4.0f);
    vec2 pair[2] = {vec2(5.0f, 6.0f), vec2(7.0f, 8.0f)};
    EXPECT_EQ((&pair[0].x)[2], 7.0f);
}

TEST(Vector, WiderVectorsBuildFromNarrowerOnes)
{
    vec3 a(vec2(1.0f, 2.0f), 3.0f);
    EXPECT_EQ(a.x, 1.0f);
    EXPECT_EQ(a.y, 2.0f);
    EXPECT_EQ(a.z, 3.0f);
    vec4 b(a, 4.0f);
    EXPECT_EQ(b.x, 1.0f);
    EXPECT_EQ(b.y, 2.0f);
    EXPECT_EQ(b.z, 3.0f);
    EXPECT_EQ(b.w, 4.0f);
}

// ---- length and normalize ----

TEST(Vector, LengthIsRootOfSumOfSquares)
{
    EXPECT_EQ(vec2(3.0f, 4.0f).length(), 5.0f);
    EXPECT_EQ(vec3(2.0f, 3.0f, 6.0f).length(), 7.0f);
    EXPECT_EQ(vec4(1.0f, 2.0f, 2.0f, 4.0f).length(), 5.0f);
    EXPECT_EQ(vec2(-3.0f, -4.0f).length(), 5.0f);
}

TEST(Vector, NormalizeVec2DividesByLength)
{
    vec2 v(3.0f, 4.0f);
    v.normalize();
    EXPECT_EQ(v.x, 3.0f / 5.0f);
    EXPECT_EQ(v.y, 4.0f / 5.0f);
}

TEST(Vector, NormalizeVec2OfZeroStaysZero)
{
    vec2 v(0.0f, 0.0f);
    v.normalize();
    EXPECT_EQ(v.x, 0.0f);
    EXPECT_EQ(v.y, 0.0f);
    EXPECT_FALSE(std::isnan(v.x));
    EXPECT_FALSE(std::isnan(v.y));
}

TEST(Vector, NormalizeVec3DividesByLength)
{
    vec3 v(0.0f, 3.0f, 4.0f);
    v.normalize();
    EXPECT_EQ(v.x, 0.0f);
    EXPECT_EQ(v.y, 3.0f / 5.0f);
    EXPECT_EQ(v.z, 4.0f / 5.0f);
}

TEST(Vector, NormalizeVec3OfZeroStaysZero)
{
    vec3 v;
    v.normalize();
    EXPECT_EQ(v.x, 0.0f);
    EXPECT_EQ(v.y, 0.0f);
    EXPECT_EQ(v.z, 0.0f);
}

TEST(Vector, NormalizeVec4DividesByLength)
{
    vec4 v(1.0f, 2.0f, 2.0f, 4.0f);
    v.normalize();
    EXPECT_EQ(v.x, 1.0f / 5.0f);
    EXPECT_EQ(v.y, 2.0f / 5.0f);
    EXPECT_EQ(v.z, 2.0f / 5.0f);
    EXPECT_EQ(v.w, 4.0f / 5.0f);
}

TEST(Vector, NormalizeVec4OfZeroStaysZero)
{
    vec4 v;
    v.normalize();
    EXPECT_EQ(v.x, 0.0f);
    EXPECT_EQ(v.y, 0.0f);
    EXPECT_EQ(v.z, 0.0f);
    EXPECT_EQ(v.w, 0.0f);
}

TEST(Vector, NormalizeReturnsTheVectorItself)
{
    vec2 v(0.0f, 8.0f);
    vec2& r = v.normalize();
    EXPECT_EQ(&r, &v);
    EXPECT_EQ(vec3(0.0f, 0.0f, 2.0f).normalize().z, 1.0f);
    EXPECT_EQ(vec4(0.0f, 0.0f, 0.0f, -2.0f).normalize().w, -1.0f);
}

// ---- clamp ----

TEST(Vector, ClampVec1LimitsToRange)
{
    EXPECT_EQ(vec1(5.0f).clamp(0.0f, 2.0f).x, 2.0f);
    EXPECT_EQ(vec1(-1.0f).clamp(0.0f, 2.0f).x, 0.0f);
    EXPECT_EQ(vec1(1.5f).clamp(0.0f, 2.0f).x, 1.5f);
}

TEST(Vector, ClampVec2LimitsEachComponent)
{
    vec2 v(-3.0f, 9.0f);
    v.clamp(0.0f, 5.0f);
    EXPECT_EQ(v.x, 0.0f);
    EXPECT_EQ(v.y, 5.0f);
}

TEST(Vector, ClampVec3LimitsEachComponent)
{
    vec3 v(-3.0f, 2.5f, 9.0f);
    v.clamp(0.0f, 5.0f);
    EXPECT_EQ(v.x, 0.0f);
    EXPECT_EQ(v.y, 2.5f);
    EXPECT_EQ(v.z, 5.0f);
}

TEST(Vector, ClampVec4LimitsEachComponent)
{
    vec4 v(-3.0f, 2.5f, 9.0f, 1.0f);
    v.clamp(0.0f, 1.0f);
    EXPECT_EQ(v.x, 0.0f);
    EXPECT_EQ(v.y, 1.0f);
    EXPECT_EQ(v.z, 1.0f);
    EXPECT_EQ(v.w, 1.0f);
}

TEST(Vector, ClampTestsUpperBoundFirstWhenBoundsAreReversed)
{
    // min 10 > max 0: 5 lies above max and below min, and takes max because c > max is
    // tested first; -5 is not above max and takes min; 20 takes max.
    EXPECT_EQ(vec1(5.0f).clamp(10.0f, 0.0f).x, 0.0f);
    vec2 v(-5.0f, 20.0f);
    v.clamp(10.0f, 0.0f);
    EXPECT_EQ(v.x, 10.0f);
    EXPECT_EQ(v.y, 0.0f);
}

// ---- operator[] ----

TEST(Vector, Vec3IndexSelectsByLowBits)
{
    vec3 v(1.0f, 2.0f, 3.0f);
    EXPECT_EQ(v[0], 1.0f);
    EXPECT_EQ(v[1], 2.0f);
    EXPECT_EQ(v[2], 3.0f);
}

TEST(Vector, Vec3IndexOutOfRangeWrapsOntoBitRules)
{
    vec3 v(1.0f, 2.0f, 3.0f);
    // Bit 1 set gives z, else bit 0 set gives y, else x.
    EXPECT_EQ(v[3], 3.0f);
    EXPECT_EQ(v[4], 1.0f);
    EXPECT_EQ(v[5], 2.0f);
    EXPECT_EQ(v[6], 3.0f);
    EXPECT_EQ(v[7], 3.0f);
    EXPECT_EQ(v[0xFFFFFFFDu], 2.0f);
}

TEST(Vector, Vec3IndexReturnsWritableReference)
{
    vec3 v;
    v[0] = 4.0f;
    v[1] = 5.0f;
    v[3] = 6.0f;
    EXPECT_EQ(v.x, 4.0f);
    EXPECT_EQ(v.y, 5.0f);
    EXPECT_EQ(v.z, 6.0f);
    const vec3& c = v;
    EXPECT_EQ(c[2], 6.0f);
}

TEST(Vector, Vec4IndexSelectsByLowBits)
{
    vec4 v(1.0f, 2.0f, 3.0f, 4.0f);
    EXPECT_EQ(v[0], 1.0f);
    EXPECT_EQ(v[1], 2.0f);
    EXPECT_EQ(v[2], 3.0f);
    EXPECT_EQ(v[3], 4.0f);
}

TEST(Vector, Vec4IndexOutOfRangeWrapsOntoBitRules)
{
    vec4 v(1.0f, 2.0f, 3.0f, 4.0f);
    EXPECT_EQ(v[4], 1.0f);
    EXPECT_EQ(v[5], 2.0f);
    EXPECT_EQ(v[6], 3.0f);
    EXPECT_EQ(v[7], 4.0f);
    EXPECT_EQ(v[0xFFFFFFFFu], 4.0f);
}

TEST(Vector, Vec4IndexReturnsWritableReference)
{
    vec4 v;
    v[7] = 9.0f;
    v[6] = 8.0f;
    EXPECT_EQ(v.w, 9.0f);
    EXPECT_EQ(v.z, 8.0f);
    const vec4& c = v;
    EXPECT_EQ(c[3], 9.0f);
}

// ---- Member arithmetic ----

TEST(Vector, Vec2CompoundOperatorsWorkPerComponent)
{
    vec2 v(1.0f, 2.0f);
    v += vec2(3.0f, 5.0f);
    EXPECT_EQ(v.x, 4.0f);
    EXPECT_EQ(v.y, 7.0f);
    v -= vec2(1.0f, 3.0f);
    EXPECT_EQ(v.x, 3.0f);
    EXPECT_EQ(v.y, 4.0f);
    v *= vec2(2.0f, -1.0f);
    EXPECT_EQ(v.x, 6.0f);
    EXPECT_EQ(v.y, -4.0f);
    v *= 0.5f;
    EXPECT_EQ(v.x, 3.0f);
    EXPECT_EQ(v.y, -2.0f);
    v /= 4.0f;
    EXPECT_EQ(v.x, 0.75f);
    EXPECT_EQ(v.y, -0.5f);
}

TEST(Vector, Vec3CompoundOperatorsWorkPerComponent)
{
    vec3 v(1.0f, 2.0f, 3.0f);
    v += vec3(1.0f, 1.0f, 1.0f);
    EXPECT_EQ(v.x, 2.0f);
    EXPECT_EQ(v.y, 3.0f);
    EXPECT_EQ(v.z, 4.0f);
    v -= vec3(0.0f, 1.0f, 2.0f);
    EXPECT_EQ(v.x, 2.0f);
    EXPECT_EQ(v.y, 2.0f);
    EXPECT_EQ(v.z, 2.0f);
    v *= vec3(1.0f, 2.0f, 3.0f);
    EXPECT_EQ(v.x, 2.0f);
    EXPECT_EQ(v.y, 4.0f);
    EXPECT_EQ(v.z, 6.0f);
    v *= 2.0f;
    EXPECT_EQ(v.x, 4.0f);
    EXPECT_EQ(v.y, 8.0f);
    EXPECT_EQ(v.z, 12.0f);
    v /= 8.0f;
    EXPECT_EQ(v.x, 0.5f);
    EXPECT_EQ(v.y, 1.0f);
    EXPECT_EQ(v.z, 1.5f);
}

TEST(Vector, Vec4CompoundOperatorsWorkPerComponent)
{
    vec4 v(1.0f, 2.0f, 3.0f, 4.0f);
    v += vec4(1.0f, 1.0f, 1.0f, 1.0f);
    EXPECT_EQ(v.x, 2.0f);
    EXPECT_EQ(v.w, 5.0f);
    v -= vec4(2.0f, 3.0f, 4.0f, 5.0f);
    EXPECT_EQ(v.x, 0.0f);
    EXPECT_EQ(v.y, 0.0f);
    EXPECT_EQ(v.z, 0.0f);
    EXPECT_EQ(v.w, 0.0f);
    v = vec4(1.0f, 2.0f, 3.0f, 4.0f);
    v *= vec4(4.0f, 3.0f, 2.0f, 1.0f);
    EXPECT_EQ(v.x, 4.0f);
    EXPECT_EQ(v.y, 6.0f);
    EXPECT_EQ(v.z, 6.0f);
    EXPECT_EQ(v.w, 4.0f);
    v *= -1.0f;
    EXPECT_EQ(v.x, -4.0f);
    EXPECT_EQ(v.w, -4.0f);
    v /= 2.0f;
    EXPECT_EQ(v.x, -2.0f);
    EXPECT_EQ(v.y, -3.0f);
    EXPECT_EQ(v.z, -3.0f);
    EXPECT_EQ(v.w, -2.0f);
}

TEST(Vector, MemberDivideDividesRatherThanMultiplyingByReciprocal)
{
    vec2 v(5.0f, 5.0f);
    v /= 3.0f;
    EXPECT_EQ(v.x, 5.0f / 3.0f);
}

TEST(Vector, MemberDivideByZeroIsNotGuarded)
{
    vec2 a(3.0f, -4.0f);
    a /= 0.0f;
    EXPECT_TRUE(std::isinf(a.x) && a.x > 0.0f);
    EXPECT_TRUE(std::isinf(a.y) && a.y < 0.0f);

    vec3 b(1.0f, 0.0f, 1.0f);
    b /= 0.0f;
    EXPECT_TRUE(std::isinf(b.x));
    EXPECT_TRUE(std::isnan(b.y));

    vec4 c(1.0f, 1.0f, 1.0f, 1.0f);
    c /= 0.0f;
    EXPECT_TRUE(std::isinf(c.w));
}

TEST(Vector, CompoundOperatorsReturnTheVectorItself)
{
    vec2 v(1.0f, 1.0f);
    EXPECT_EQ(&(v += vec2(1.0f, 1.0f)), &v);
    EXPECT_EQ(&(v *= 2.0f), &v);
    EXPECT_EQ(&(v /= 2.0f), &v);
    EXPECT_EQ(&(v.clamp(0.0f, 1.0f)), &v);
}

// ---- Free operators ----

TEST(Vector, Vec2FreeOperatorsWorkPerComponent)
{
    vec2 a(1.0f, 2.0f);
    vec2 b(3.0f, 5.0f);
    vec2 sum = a + b;
    EXPECT_EQ(sum.x, 4.0f);
    EXPECT_EQ(sum.y, 7.0f);
    vec2 diff = a - b;
    EXPECT_EQ(diff.x, -2.0f);
    EXPECT_EQ(diff.y, -3.0f);
    vec2 prod = a * b;
    EXPECT_EQ(prod.x, 3.0f);
    EXPECT_EQ(prod.y, 10.0f);
    vec2 right = a * 3.0f;
    EXPECT_EQ(right.x, 3.0f);
    EXPECT_EQ(right.y, 6.0f);
    vec2 left = 3.0f * a;
    EXPECT_EQ(left.x, 3.0f);
    EXPECT_EQ(left.y, 6.0f);
    vec2 quot = b / 2.0f;
    EXPECT_EQ(quot.x, 1.5f);
    EXPECT_EQ(quot.y, 2.5f);
}

TEST(Vector, Vec3FreeOperatorsWorkPerComponent)
{
    vec3 a(1.0f, 2.0f, 3.0f);
    vec3 b(4.0f, 6.0f, 8.0f);
    vec3 sum = a + b;
    EXPECT_EQ(sum.x, 5.0f);
    EXPECT_EQ(sum.y, 8.0f);
    EXPECT_EQ(sum.z, 11.0f);
    vec3 diff = b - a;
    EXPECT_EQ(diff.x, 3.0f);
    EXPECT_EQ(diff.y, 4.0f);
    EXPECT_EQ(diff.z, 5.0f);
    vec3 prod = a * b;
    EXPECT_EQ(prod.x, 4.0f);
    EXPECT_EQ(prod.y, 12.0f);
    EXPECT_EQ(prod.z, 24.0f);
    vec3 right = a * -2.0f;
    EXPECT_EQ(right.x, -2.0f);
    EXPECT_EQ(right.y, -4.0f);
    EXPECT_EQ(right.z, -6.0f);
    vec3 left = -2.0f * a;
    EXPECT_EQ(left.z, -6.0f);
    vec3 quot = b / 4.0f;
    EXPECT_EQ(quot.x, 1.0f);
    EXPECT_EQ(quot.y, 1.5f);
    EXPECT_EQ(quot.z, 2.0f);
}

TEST(Vector, Vec4FreeOperatorsWorkPerComponent)
{
    vec4 a(1.0f, 2.0f, 3.0f, 4.0f);
    vec4 b(2.0f, 2.0f, 2.0f, 2.0f);
    vec4 sum = a + b;
    EXPECT_EQ(sum.x, 3.0f);
    EXPECT_EQ(sum.w, 6.0f);
    vec4 diff = a - b;
    EXPECT_EQ(diff.x, -1.0f);
    EXPECT_EQ(diff.y, 0.0f);
    EXPECT_EQ(diff.z, 1.0f);
    EXPECT_EQ(diff.w, 2.0f);
    vec4 prod = a * b;
    EXPECT_EQ(prod.x, 2.0f);
    EXPECT_EQ(prod.y, 4.0f);
    EXPECT_EQ(prod.z, 6.0f);
    EXPECT_EQ(prod.w, 8.0f);
    vec4 right = a * 0.5f;
    EXPECT_EQ(right.x, 0.5f);
    EXPECT_EQ(right.w, 2.0f);
    vec4 left = 0.5f * a;
    EXPECT_EQ(left.y, 1.0f);
    EXPECT_EQ(left.z, 1.5f);
    vec4 quot = a / 2.0f;
    EXPECT_EQ(quot.x, 0.5f);
    EXPECT_EQ(quot.y, 1.0f);
    EXPECT_EQ(quot.z, 1.5f);
    EXPECT_EQ(quot.w, 2.0f);
}

TEST(Vector, FreeDivideByZeroGivesZeroVector)
{
    vec2 a = vec2(3.0f, 4.0f) / 0.0f;
    EXPECT_EQ(a.x, 0.0f);
    EXPECT_EQ(a.y, 0.0f);
    vec3 b = vec3(3.0f, 4.0f, 5.0f) / 0.0f;
    EXPECT_EQ(b.x, 0.0f);
    EXPECT_EQ(b.y, 0.0f);
    EXPECT_EQ(b.z, 0.0f);
    vec4 c = vec4(3.0f, 4.0f, 5.0f, 6.0f) / -0.0f;
    EXPECT_EQ(c.x, 0.0f);
    EXPECT_EQ(c.y, 0.0f);
    EXPECT_EQ(c.z, 0.0f);
    EXPECT_EQ(c.w, 0.0f);
}

TEST(Vector, FreeDivideMultipliesByReciprocal)
{
    // 5 * (1/3) rounds to a different float than 5 / 3.
    const float reciprocal = 1.0f / 3.0f;
    vec2 a = vec2(5.0f, 1.0f) / 3.0f;
    EXPECT_EQ(a.x, 5.0f * reciprocal);
    EXPECT_EQ(a.y, 1.0f * reciprocal);
    vec3 b = vec3(5.0f, 5.0f, 5.0f) / 3.0f;
    EXPECT_EQ(b.z, 5.0f * reciprocal);
    vec4 c = vec4(5.0f, 5.0f, 5.0f, 5.0f) / 3.0f;
    EXPECT_EQ(c.w, 5.0f * reciprocal);
}

TEST(Vector, FreeOperatorsLeaveOperandsUnchanged)
{
    vec2 a(1.0f, 2.0f);
    vec2 b(3.0f, 4.0f);
    vec2 c = a + b;
    c = a - b;
    c = a * b;
    c = a / 2.0f;
    (void)c;
    EXPECT_EQ(a.x, 1.0f);
    EXPECT_EQ(a.y, 2.0f);
    EXPECT_EQ(b.x, 3.0f);
    EXPECT_EQ(b.y, 4.0f);
}
