#include "engine/Matrix.h"

#include <cmath>

#include <gtest/gtest.h>

using orvel::mat2;
using orvel::mat4;
using orvel::vec2;
using orvel::vec3;
using orvel::vec4;

namespace {

void expectMat2(const mat2& m, float e0, float e1, float e2, float e3, float e4, float e5)
{
    const float e[6] = {e0, e1, e2, e3, e4, e5};
    for (int i = 0; i < 6; ++i) {
        SCOPED_TRACE(testing::Message() << "element " << i);
        EXPECT_FLOAT_EQ(m.m[i], e[i]);
    }
}

void expectMat4(const mat4& m, const float (&e)[16])
{
    for (int i = 0; i < 16; ++i) {
        SCOPED_TRACE(testing::Message() << "element " << i);
        EXPECT_FLOAT_EQ(m.m[i], e[i]);
    }
}

// Elements 1..16 in storage order: column 0 is (1, 2, 3, 4), column 3 is (13, 14, 15, 16).
mat4 counting()
{
    float v[16];
    for (int i = 0; i < 16; ++i) {
        v[i] = static_cast<float>(i + 1);
    }
    return mat4(v);
}

// An integer matrix with determinant 8, so its inverse is exact in float.
const float GENERAL[16] = {-2, -4, -2, -3, -1, -1, -2, 3, 1, 1, 3, -2, -2, -2, -2, 4};
// Its inverse, worked out with exact rational arithmetic.
const float GENERAL_INVERSE[16] = {0.5f,  5.5f,  2.25f, -2.625f, -0.5f, -3.5f, -1.75f, 1.375f,
                                   0.0f,  0.0f,  0.5f,  0.25f,   0.0f,  1.0f,  0.5f,   -0.25f};

} // namespace

// ======== mat2 ========

TEST(Mat2, DefaultConstructionIsIdentity)
{
    expectMat2(mat2(), 1, 0, 0, 1, 0, 0);
}

TEST(Mat2, IdentityResetsAnyMatrix)
{
    mat2 m(1, 2, 3, 4, 5, 6);
    m.identity();
    expectMat2(m, 1, 0, 0, 1, 0, 0);
}

TEST(Mat2, TranslateOfIdentitySetsTranslation)
{
    mat2 m;
    m.translate(5.0f, 7.0f);
    expectMat2(m, 1, 0, 0, 1, 5, 7);
}

TEST(Mat2, TranslateMovesInLocalSpace)
{
    // m4 += m0*tx + m2*ty, m5 += m1*tx + m3*ty
    mat2 m(2, 0, 0, 3, 1, 1);
    m.translate(5.0f, 7.0f);
    expectMat2(m, 2, 0, 0, 3, 1 + 2 * 5, 1 + 3 * 7);

    mat2 n(1, 2, 3, 4, 5, 6);
    n.translate(1.0f, 1.0f);
    expectMat2(n, 1, 2, 3, 4, 5 + 1 + 3, 6 + 2 + 4);
}

TEST(Mat2, TranslateByVectorMatchesComponents)
{
    mat2 m(1, 2, 3, 4, 5, 6);
    m.translate(vec2(-1.0f, 2.0f));
    expectMat2(m, 1, 2, 3, 4, 5 - 1 + 6, 6 - 2 + 8);
}

TEST(Mat2, RotateOfIdentityGivesCosineAndSine)
{
    const float a = 0.5f;
    const float c = std::cos(a);
    const float s = std::sin(a);
    mat2 m;
    m.rotate(a);
    expectMat2(m, c, -s, s, c, 0, 0);
}

TEST(Mat2, RotatePostMultipliesBasisColumnsAndKeepsTranslation)
{
    const float a = 0.5f;
    const float c = std::cos(a);
    const float s = std::sin(a);
    mat2 m(1, 2, 3, 4, 5, 6);
    m.rotate(a);
    expectMat2(m, c * 1 - s * 3, c * 2 - s * 4, s * 1 + c * 3, s * 2 + c * 4, 5, 6);
}

TEST(Mat2, RotateByZeroKeepsMatrix)
{
    mat2 m(1, 2, 3, 4, 5, 6);
    m.rotate(0.0f);
    expectMat2(m, 1, 2, 3, 4, 5, 6);
}

TEST(Mat2, ScaleUniformScalesBasisOnly)
{
    mat2 m(1, 2, 3, 4, 5, 6);
    m.scale(2.0f);
    expectMat2(m, 2, 4, 6, 8, 5, 6);
}

TEST(Mat2, ScaleByVectorScalesEachBasisColumn)
{
    mat2 m(1, 2, 3, 4, 5, 6);
    m.scale(vec2(2.0f, 3.0f));
    expectMat2(m, 2, 4, 9, 12, 5, 6);
}

TEST(Mat2, DeterminantIsDiagonalMinusOffDiagonalProduct)
{
    EXPECT_FLOAT_EQ(mat2(1, 2, 3, 4, 5, 6).determinant(), 1 * 4 - 2 * 3);
    EXPECT_FLOAT_EQ(mat2().determinant(), 1.0f);
    EXPECT_FLOAT_EQ(mat2(2, 0, 0, 3, 9, 9).determinant(), 6.0f);
}

TEST(Mat2, TransposeCopiesM3IntoM0AndSwapsOffDiagonal)
{
    mat2 m(1, 2, 3, 4, 5, 6);
    m.transpose();
    expectMat2(m, 4, 3, 2, 4, 5, 6);
}

TEST(Mat2, InvertOfTranslationNegatesTranslation)
{
    mat2 m;
    m.translate(5.0f, 7.0f);
    m.invert();
    expectMat2(m, 1, 0, 0, 1, -5, -7);
}

TEST(Mat2, InvertOfRotationKeepsItsDirection)
{
    // d = 3*3 - 4*(-4) = 25; m0 = m3/d, m1 = -m2/d, m2 = -m1/d, m3 = m0/d. The true inverse
    // would be (0.12, -0.16, 0.16, 0.12).
    mat2 m(3, 4, -4, 3, 0, 0);
    m.invert();
    expectMat2(m, 3.0f / 25, 4.0f / 25, -4.0f / 25, 3.0f / 25, 0, 0);
}

TEST(Mat2, InvertOfBuiltRotationFollowsOffDiagonalPlacement)
{
    const float a = 0.75f;
    const float c = std::cos(a);
    const float s = std::sin(a);
    mat2 m;
    m.rotate(a);
    m.invert();
    // Starting from (c, -s, s, c): d = c*c - (-s)*s, then m1 = -s/d and m2 = s/d.
    const float k = 1.0f / (c * c - (-s) * s);
    expectMat2(m, c * k, -s * k, s * k, c * k, 0, 0);
}

TEST(Mat2, InvertNegatesTranslationWithoutRotatingIt)
{
    mat2 m(2, 0, 0, 4, 5, 7);
    m.invert();
    // A true inverse would translate by (-2.5, -1.75).
    // d = 8: m0 = m3/8, m3 = m0/8.
    expectMat2(m, 4 * 0.125f, 0, 0, 2 * 0.125f, -5, -7);
}

TEST(Mat2, InvertLeavesSingularMatrixUnchanged)
{
    mat2 m(1, 2, 2, 4, 5, 6);
    m.invert();
    expectMat2(m, 1, 2, 2, 4, 5, 6);
}

TEST(Mat2, NormalizeScalesEveryPairIncludingTranslation)
{
    mat2 m(3, 4, 0, 2, 6, 8);
    m.normalize();
    expectMat2(m, 0.6f, 0.8f, 0, 1, 0.6f, 0.8f);
}

TEST(Mat2, NormalizeSkipsZeroPairs)
{
    mat2 m(0, 0, 3, 4, 0, 0);
    m.normalize();
    expectMat2(m, 0, 0, 0.6f, 0.8f, 0, 0);
}

TEST(Mat2, AddAssignAddsAllSixElements)
{
    mat2 m(1, 2, 3, 4, 5, 6);
    m += mat2(10, 20, 30, 40, 50, 60);
    expectMat2(m, 11, 22, 33, 44, 55, 66);
}

TEST(Mat2, ProductUsesBTranslationOnlyAndA2InR5)
{
    const mat2 a(1, 2, 3, 4, 5, 6);
    const mat2 b(7, 8, 9, 10, 11, 12);
    mat2 r = a * b;
    // r4 = a0*b4 + a2*b5, r5 = a1*b4 + a2*b5
    expectMat2(r, 1 * 7 + 3 * 8, 2 * 7 + 4 * 8, 1 * 9 + 3 * 10, 2 * 9 + 4 * 10,
               1 * 11 + 3 * 12, 2 * 11 + 3 * 12);
}

TEST(Mat2, MultiplyAssignGivesSameResultAsProduct)
{
    mat2 a(1, 2, 3, 4, 5, 6);
    a *= mat2(7, 8, 9, 10, 11, 12);
    expectMat2(a, 31, 46, 39, 58, 47, 58);
}

TEST(Mat2, MultiplyAssignBySelfReadsOriginalElements)
{
    mat2 a(1, 2, 3, 4, 5, 6);
    a *= a;
    expectMat2(a, 1 + 3 * 2, 2 + 4 * 2, 3 + 3 * 4, 2 * 3 + 4 * 4, 5 + 3 * 6, 2 * 5 + 3 * 6);
}

TEST(Mat2, ProductWithIdentityOnRightDropsOwnTranslation)
{
    mat2 r = mat2(1, 2, 3, 4, 5, 6) * mat2();
    expectMat2(r, 1, 2, 3, 4, 0, 0);
}

TEST(Mat2, ProductWithIdentityOnLeftLosesYTranslation)
{
    // r5 = a1*b4 + a2*b5 with a1 = a2 = 0.
    mat2 r = mat2() * mat2(1, 2, 3, 4, 5, 6);
    expectMat2(r, 1, 2, 3, 4, 5, 0);
}

TEST(Mat2, ChangesChainOnTheSameMatrix)
{
    mat2 m(9, 9, 9, 9, 9, 9);
    mat2& r = m.identity().translate(1.0f, 2.0f).scale(2.0f);
    EXPECT_EQ(&r, &m);
    expectMat2(m, 2, 0, 0, 2, 1, 2);
}

TEST(Mat2, TimesVectorMapsPoint)
{
    const mat2 m(1, 2, 3, 4, 5, 6);
    vec2 p = m * vec2(7.0f, 8.0f);
    EXPECT_FLOAT_EQ(p.x, 1 * 7 + 3 * 8 + 5);
    EXPECT_FLOAT_EQ(p.y, 2 * 7 + 4 * 8 + 6);
}

TEST(Mat2, VectorTimesMatrixIsSameAsMatrixTimesVector)
{
    const mat2 m(1, 2, 3, 4, 5, 6);
    vec2 p = vec2(7.0f, 8.0f) * m;
    EXPECT_FLOAT_EQ(p.x, 36.0f);
    EXPECT_FLOAT_EQ(p.y, 52.0f);
}

TEST(Mat2, TransformAppliesScaleThenRotationThenTranslation)
{
    // identity * translate(10, 20) * rotate(a) * scale(2): (1, 0) -> 2 * (c, -s) + (10, 20)
    const float a = 0.25f;
    mat2 m;
    m.translate(10.0f, 20.0f).rotate(a).scale(2.0f);
    vec2 p = m * vec2(1.0f, 0.0f);
    EXPECT_FLOAT_EQ(p.x, 2.0f * std::cos(a) + 10.0f);
    EXPECT_FLOAT_EQ(p.y, -2.0f * std::sin(a) + 20.0f);
}

TEST(Mat2, ConvertsToMat4WithBasisAndTranslationInPlace)
{
    mat4 m = mat2(1, 2, 3, 4, 5, 6);
    const float e[16] = {1, 2, 0, 0, 3, 4, 0, 0, 0, 0, 1, 0, 5, 6, 0, 1};
    expectMat4(m, e);
}

// ======== mat4 ========

TEST(Mat4, DefaultConstructionIsIdentity)
{
    const float e[16] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
    expectMat4(mat4(), e);
}

TEST(Mat4, ConstructionFromArrayKeepsStorageOrder)
{
    mat4 m = counting();
    for (int i = 0; i < 16; ++i) {
        EXPECT_EQ(m.m[i], static_cast<float>(i + 1));
    }
    EXPECT_EQ(sizeof(mat4), 16 * sizeof(float));
    EXPECT_EQ(static_cast<const void*>(&m), static_cast<const void*>(m.m));
}

TEST(Mat4, IdentityResetsAnyMatrix)
{
    mat4 m = counting();
    m.identity();
    const float e[16] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
    expectMat4(m, e);
}

TEST(Mat4, TransposeSwapsRowsAndColumns)
{
    mat4 m = counting();
    m.transpose();
    const float e[16] = {1, 5, 9, 13, 2, 6, 10, 14, 3, 7, 11, 15, 4, 8, 12, 16};
    expectMat4(m, e);
}

TEST(Mat4, DeterminantOfDiagonalIsProductOfDiagonal)
{
    mat4 m;
    m.scale(vec4(2.0f, 3.0f, 4.0f, 5.0f));
    EXPECT_FLOAT_EQ(m.determinant(), 120.0f);
}

TEST(Mat4, DeterminantOfGeneralMatrix)
{
    EXPECT_FLOAT_EQ(mat4(GENERAL).determinant(), 8.0f);
}

TEST(Mat4, DeterminantChangesSignWhenColumnsSwap)
{
    float swapped[16];
    for (int r = 0; r < 4; ++r) {
        swapped[r] = GENERAL[4 + r];
        swapped[4 + r] = GENERAL[r];
        swapped[8 + r] = GENERAL[8 + r];
        swapped[12 + r] = GENERAL[12 + r];
    }
    EXPECT_FLOAT_EQ(mat4(swapped).determinant(), -8.0f);
}

TEST(Mat4, DeterminantOfSingularMatrixIsZero)
{
    // Every column of the counting matrix is the previous one plus (4, 4, 4, 4).
    EXPECT_EQ(counting().determinant(), 0.0f);
}

TEST(Mat4, InvertGivesCofactorInverse)
{
    mat4 m(GENERAL);
    m.invert();
    expectMat4(m, GENERAL_INVERSE);
}

TEST(Mat4, InvertOfTranslateScaleUndoesBoth)
{
    mat4 m;
    m.translate(vec3(1.0f, 2.0f, 3.0f)).scale(vec3(2.0f, 4.0f, 8.0f));
    m.invert();
    const float e[16] = {0.5f, 0, 0, 0, 0, 0.25f, 0, 0, 0, 0, 0.125f, 0, -0.5f, -0.5f, -0.375f, 1};
    expectMat4(m, e);
}

TEST(Mat4, InvertLeavesSingularMatrixUnchanged)
{
    mat4 m = counting();
    m.invert();
    const float e[16] = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16};
    expectMat4(m, e);
}

TEST(Mat4, AddAssignAddsElementwise)
{
    mat4 m = counting();
    m += mat4();
    const float e[16] = {2, 2, 3, 4, 5, 7, 7, 8, 9, 10, 12, 12, 13, 14, 15, 17};
    expectMat4(m, e);
}

TEST(Mat4, ProductIsColumnMajorAB)
{
    float b[16];
    for (int i = 0; i < 16; ++i) {
        b[i] = static_cast<float>(17 + i);
    }
    // Element 4c + r = sum over k of A[4k + r] * B[4c + k]; e.g. element 0 is
    // 1*17 + 5*18 + 9*19 + 13*20 = 538.
    const float ab[16] = {538, 612, 686, 760, 650, 740, 830, 920,
                          762, 868, 974, 1080, 874, 996, 1118, 1240};
    expectMat4(counting() * mat4(b), ab);
    const float ba[16] = {250, 260, 270, 280, 618, 644, 670, 696,
                          986, 1028, 1070, 1112, 1354, 1412, 1470, 1528};
    expectMat4(mat4(b) * counting(), ba);
}

TEST(Mat4, MultiplyAssignGivesSameResultAsProduct)
{
    float b[16];
    for (int i = 0; i < 16; ++i) {
        b[i] = static_cast<float>(17 + i);
    }
    mat4 m = counting();
    m *= mat4(b);
    const float ab[16] = {538, 612, 686, 760, 650, 740, 830, 920,
                          762, 868, 974, 1080, 874, 996, 1118, 1240};
    expectMat4(m, ab);
}

TEST(Mat4, ProductWithIdentityKeepsMatrix)
{
    const float e[16] = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16};
    expectMat4(counting() * mat4(), e);
    expectMat4(mat4() * counting(), e);
}

TEST(Mat4, TranslateMovesOriginInLocalSpaceAndLeavesRowThree)
{
    mat4 m = counting();
    m.translate(vec3(1.0f, 2.0f, 3.0f));
    // m12 += 1*1 + 5*2 + 9*3, m13 += 2*1 + 6*2 + 10*3, m14 += 3*1 + 7*2 + 11*3
    const float e[16] = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 51, 58, 65, 16};
    expectMat4(m, e);
}

TEST(Mat4, TranslateOfIdentityMovesPoints)
{
    mat4 m;
    m.translate(vec3(1.0f, 2.0f, 3.0f));
    vec3 p = m * vec3(10.0f, 20.0f, 30.0f);
    EXPECT_FLOAT_EQ(p.x, 11.0f);
    EXPECT_FLOAT_EQ(p.y, 22.0f);
    EXPECT_FLOAT_EQ(p.z, 33.0f);
}

TEST(Mat4, ScaleUniformScalesAllSixteenElements)
{
    mat4 m = counting();
    m.scale(2.0f);
    for (int i = 0; i < 16; ++i) {
        EXPECT_FLOAT_EQ(m.m[i], 2.0f * static_cast<float>(i + 1));
    }
}

TEST(Mat4, ScaleByVec3ScalesRowsZeroToTwoOfFirstThreeColumns)
{
    mat4 m = counting();
    m.scale(vec3(2.0f, 3.0f, 4.0f));
    const float e[16] = {2, 4, 6, 4, 15, 18, 21, 8, 36, 40, 44, 12, 13, 14, 15, 16};
    expectMat4(m, e);
}

TEST(Mat4, ScaleByVec4ScalesWholeColumns)
{
    mat4 m = counting();
    m.scale(vec4(2.0f, 3.0f, 4.0f, 5.0f));
    const float e[16] = {2, 4, 6, 8, 15, 18, 21, 24, 36, 40, 44, 48, 65, 70, 75, 80};
    expectMat4(m, e);
}

TEST(Mat4, RotateAboutAxisOfIdentityGivesAxisRotationMatrix)
{
    const float ax = 1.0f;
    const float ay = 2.0f;
    const float az = 3.0f;
    const float a = 0.5f;
    const float c = std::cos(a);
    const float s = std::sin(a);
    const float t = 1.0f - c;
    mat4 m;
    m.rotate(vec4(ax, ay, az, a));
    const float e[16] = {
        c + ax * ax * t,      ay * az * t + az * s, ax * az * t - ay * s, 0,
        ay * az * t - az * s, c + ay * ay * t,      ay * az * t + ax * s, 0,
        ax * az * t + ay * s, ay * az * t - ax * s, c + az * az * t,      0,
        0,                    0,                    0,                    1,
    };
    expectMat4(m, e);
}

TEST(Mat4, RotateAboutAxisUsesYzProductInXyCrossTerms)
{
    // Axis (1, 1, 0): with az = 0 the (0, 1) and (1, 0) terms are ay*az*t +- az*s = 0, where
    // the textbook matrix would have ax*ay*t = 1 - c.
    const float a = 0.5f;
    const float c = std::cos(a);
    const float s = std::sin(a);
    mat4 m;
    m.rotate(vec4(1.0f, 1.0f, 0.0f, a));
    EXPECT_EQ(m.m[1], 0.0f);
    EXPECT_EQ(m.m[4], 0.0f);
    EXPECT_FLOAT_EQ(m.m[0], c + (1.0f - c));
    EXPECT_FLOAT_EQ(m.m[5], c + (1.0f - c));
    EXPECT_FLOAT_EQ(m.m[2], -s);
    EXPECT_FLOAT_EQ(m.m[6], s);
    EXPECT_FLOAT_EQ(m.m[8], s);
    EXPECT_FLOAT_EQ(m.m[9], -s);
    EXPECT_FLOAT_EQ(m.m[10], c);
}

TEST(Mat4, RotateAboutZTurnsXAxisTowardsY)
{
    mat4 m;
    m.rotate(vec4(0.0f, 0.0f, 1.0f, 1.5707963f));
    vec3 p = m * vec3(1.0f, 0.0f, 0.0f);
    EXPECT_NEAR(p.x, 0.0f, 1e-6f);
    EXPECT_NEAR(p.y, 1.0f, 1e-6f);
    EXPECT_NEAR(p.z, 0.0f, 1e-6f);
}

TEST(Mat4, RotateAboutAxisPostMultipliesAllFourRowsAndKeepsColumnThree)
{
    const float a = 0.5f;
    const float c = std::cos(a);
    const float s = std::sin(a);
    const float t = 1.0f - c;
    // M = scale (2, 3, 4) with translation (5, 6, 7) and a 1 in row 3 of column 0.
    mat4 m;
    m.translate(vec3(5.0f, 6.0f, 7.0f)).scale(vec3(2.0f, 3.0f, 4.0f));
    m.m[3] = 1.0f;
    m.rotate(vec4(0.0f, 0.0f, 1.0f, a));
    // About z: R columns (c, s, 0), (-s, c, 0), (0, 0, c + t). Row r of column j of M * R is
    // scale_r * R(r, j); row 3 picks up R(0, j) through m3.
    const float e[16] = {
        2 * c,  3 * s, 0,              c,
        2 * -s, 3 * c, 0,              -s,
        0,      0,     4 * (c + t),    0,
        5,      6,     7,              1,
    };
    expectMat4(m, e);
}

TEST(Mat4, RotateEulerOfIdentityGivesEulerColumns)
{
    const float x = 0.3f;
    const float y = 0.5f;
    const float z = 0.7f;
    const float sx = std::sin(x);
    const float cx = std::cos(x);
    const float sy = std::sin(y);
    const float cy = std::cos(y);
    const float sz = std::sin(z);
    const float cz = std::cos(z);
    mat4 m;
    m.rotate(vec3(x, y, z));
    const float e[16] = {
        cy * cz, sx * sy * cz - cx * sz, cx * sy * cz + sx * sz, 0,
        cy * sz, sx * sy * sz + cx * cz, cx * sy * sz - sx * cz, 0,
        -sy,     sx * cy,                cx * cy,                0,
        0,       0,                      0,                      1,
    };
    expectMat4(m, e);
}

TEST(Mat4, RotateEulerPostMultipliesAllFourRowsAndKeepsColumnThree)
{
    const float x = 0.3f;
    const float y = 0.5f;
    const float z = 0.7f;
    const float sx = std::sin(x);
    const float cx = std::cos(x);
    const float sy = std::sin(y);
    const float cy = std::cos(y);
    const float sz = std::sin(z);
    const float cz = std::cos(z);
    mat4 m;
    m.translate(vec3(5.0f, 6.0f, 7.0f)).scale(vec3(2.0f, 3.0f, 4.0f));
    m.m[3] = 1.0f;
    m.rotate(vec3(x, y, z));
    const float r00 = cy * cz;
    const float r10 = sx * sy * cz - cx * sz;
    const float r20 = cx * sy * cz + sx * sz;
    const float r01 = cy * sz;
    const float r11 = sx * sy * sz + cx * cz;
    const float r21 = cx * sy * sz - sx * cz;
    const float r02 = -sy;
    const float r12 = sx * cy;
    const float r22 = cx * cy;
    const float e[16] = {
        2 * r00, 3 * r10, 4 * r20, r00,
        2 * r01, 3 * r11, 4 * r21, r01,
        2 * r02, 3 * r12, 4 * r22, r02,
        5,       6,       7,       1,
    };
    expectMat4(m, e);
}

TEST(Mat4, RotateEulerByZeroKeepsMatrix)
{
    mat4 m = counting();
    m.rotate(vec3(0.0f, 0.0f, 0.0f));
    const float e[16] = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16};
    expectMat4(m, e);
}

TEST(Mat4, NormalizeScalesColumnsZeroToTwoOverAllRows)
{
    const float v[16] = {3, 0, 4, 0, 0, 0, 0, 0, 1, 2, 2, 4, 13, 14, 15, 16};
    mat4 m(v);
    m.normalize();
    const float e[16] = {0.6f, 0, 0.8f, 0, 0, 0, 0, 0, 0.2f, 0.4f, 0.4f, 0.8f, 13, 14, 15, 16};
    expectMat4(m, e);
}

TEST(Mat4, CreateProjectionMatrixFillsFrustumTerms)
{
    // left -1, right 3, top 1, bottom -3, near 2, far 6
    mat4 m = mat4::createProjectionMatrix(-1.0f, 3.0f, 1.0f, -3.0f, 2.0f, 6.0f);
    const float e[16] = {
        2.0f * 2 / 4, 0,            0,                       0,
        0,            2.0f * 2 / 4, 0,                       0,
        2.0f / 4,     -2.0f / 4,    (-6.0f - 2.0f) / 4,      -1,
        0,            0,            -2.0f * 2 * 6 / 4,       0,
    };
    expectMat4(m, e);
}

TEST(Mat4, CreateOrthoMatrixWithEmptyRangesUsesUnitRanges)
{
    // right = 1, bottom = 1, far = 1
    mat4 m = mat4::createOrthoMatrix(0, 0, 0, 0, 0, 0);
    const float e[16] = {
        2.0f / (1 - 0),         0,                      0,                      0,
        0,                      2.0f / (0 - 1),         0,                      0,
        0,                      0,                      -2.0f / (1 - 0),        0,
        -(0.0f + 1) / (1 - 0),  -(0.0f + 1) / (0 - 1),  -(0.0f + 1) / (1 - 0),  1,
    };
    expectMat4(m, e);
    for (float f : m.m) {
        EXPECT_TRUE(std::isfinite(f));
    }
}

TEST(Mat4, CreateOrthoMatrixFillsOrthographicTerms)
{
    mat4 m = mat4::createOrthoMatrix(-640.0f, 640.0f, -360.0f, 360.0f, -10.0f, 10.0f);
    const float e[16] = {
        2.0f / 1280, 0,            0,            0,
        0,           2.0f / -720,  0,            0,
        0,           0,            -2.0f / 20,   0,
        0,           0,            0,            1,
    };
    expectMat4(m, e);
}

TEST(Mat4, CreateOrthoMatrixWithTopZeroPutsYDown)
{
    mat4 m = mat4::createOrthoMatrix(0.0f, 1280.0f, 0.0f, 720.0f, -1.0f, 1.0f);
    vec2 topLeft = m * vec2(0.0f, 0.0f);
    vec2 bottomRight = m * vec2(1280.0f, 720.0f);
    EXPECT_FLOAT_EQ(topLeft.x, -1.0f);
    EXPECT_FLOAT_EQ(topLeft.y, 1.0f);
    EXPECT_FLOAT_EQ(bottomRight.x, 1.0f);
    EXPECT_FLOAT_EQ(bottomRight.y, -1.0f);
}

TEST(Mat4, CreateLookAtMatrixAlongNegativeZ)
{
    // f = (0, 0, -1), s = (1, 0, 0), u = (0, 1, 0); rows s, u, -f; m14 = f . eye = -5.
    mat4 m = mat4::createLookAtMatrix(vec3(0, 0, 5), vec3(0, 0, 0), vec3(0, 1, 0));
    const float e[16] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, -5, 1};
    expectMat4(m, e);
}

TEST(Mat4, CreateLookAtMatrixFromSideWithUnnormalisedUp)
{
    // f = (-1, 0, 0), s = f x up = (0, 0, -1), u = s x f = (0, 1, 0).
    // Row 0 = s, row 1 = u, row 2 = -f = (1, 0, 0); m12 = -s.eye = 0, m13 = -u.eye = 0,
    // m14 = f.eye = -3.
    mat4 m = mat4::createLookAtMatrix(vec3(3, 0, 0), vec3(0, 0, 0), vec3(0, 2, 0));
    const float e[16] = {0, 0, 1, 0, 0, 1, 0, 0, -1, 0, 0, 0, 0, 0, -3, 1};
    expectMat4(m, e);
}

TEST(Mat4, LookAtPutsEyeAtOriginAndCenterAheadOnNegativeZ)
{
    mat4 m = mat4::createLookAtMatrix(vec3(1, 2, 7), vec3(1, 2, 3), vec3(0, 1, 0));
    vec3 eye = m * vec3(1, 2, 7);
    vec3 center = m * vec3(1, 2, 3);
    EXPECT_FLOAT_EQ(eye.x, 0.0f);
    EXPECT_FLOAT_EQ(eye.y, 0.0f);
    EXPECT_FLOAT_EQ(eye.z, 0.0f);
    EXPECT_FLOAT_EQ(center.x, 0.0f);
    EXPECT_FLOAT_EQ(center.y, 0.0f);
    EXPECT_FLOAT_EQ(center.z, -4.0f);
}

TEST(Mat4, TimesVec2UsesColumnsZeroOneAndTranslation)
{
    // (m0*x + m4*y + m12, m1*x + m5*y + m13)
    vec2 p = counting() * vec2(2.0f, 3.0f);
    EXPECT_FLOAT_EQ(p.x, 1 * 2 + 5 * 3 + 13);
    EXPECT_FLOAT_EQ(p.y, 2 * 2 + 6 * 3 + 14);
    vec2 q = vec2(2.0f, 3.0f) * counting();
    EXPECT_FLOAT_EQ(q.x, 30.0f);
    EXPECT_FLOAT_EQ(q.y, 36.0f);
}

TEST(Mat4, TimesVec3TakesRowsZeroToTwoWithoutDividingByW)
{
    // Row 3 would give 4*2 + 8*3 + 12*4 + 16 = 96; it is not divided by.
    vec3 p = counting() * vec3(2.0f, 3.0f, 4.0f);
    EXPECT_FLOAT_EQ(p.x, 1 * 2 + 5 * 3 + 9 * 4 + 13);
    EXPECT_FLOAT_EQ(p.y, 2 * 2 + 6 * 3 + 10 * 4 + 14);
    EXPECT_FLOAT_EQ(p.z, 3 * 2 + 7 * 3 + 11 * 4 + 15);
    vec3 q = vec3(2.0f, 3.0f, 4.0f) * counting();
    EXPECT_FLOAT_EQ(q.x, 66.0f);
    EXPECT_FLOAT_EQ(q.y, 76.0f);
    EXPECT_FLOAT_EQ(q.z, 86.0f);
}

TEST(Mat4, TimesVec4UsesAllFourRows)
{
    vec4 p = counting() * vec4(2.0f, 3.0f, 4.0f, 5.0f);
    EXPECT_FLOAT_EQ(p.x, 1 * 2 + 5 * 3 + 9 * 4 + 13 * 5);
    EXPECT_FLOAT_EQ(p.y, 2 * 2 + 6 * 3 + 10 * 4 + 14 * 5);
    EXPECT_FLOAT_EQ(p.z, 3 * 2 + 7 * 3 + 11 * 4 + 15 * 5);
    EXPECT_FLOAT_EQ(p.w, 4 * 2 + 8 * 3 + 12 * 4 + 16 * 5);
    vec4 q = vec4(2.0f, 3.0f, 4.0f, 5.0f) * counting();
    EXPECT_FLOAT_EQ(q.x, 118.0f);
    EXPECT_FLOAT_EQ(q.y, 132.0f);
    EXPECT_FLOAT_EQ(q.z, 146.0f);
    EXPECT_FLOAT_EQ(q.w, 160.0f);
}

TEST(Mat4, ChangesChainOnTheSameMatrix)
{
    mat4 m = counting();
    mat4& r = m.identity().translate(vec3(1, 2, 3)).scale(2.0f);
    EXPECT_EQ(&r, &m);
    const float e[16] = {2, 0, 0, 0, 0, 2, 0, 0, 0, 0, 2, 0, 2, 4, 6, 2};
    expectMat4(m, e);
}
