// KtCoordSystem: pre- and post-operations against the elementary matrices,
// the accessors of its blocks and its print form.
#include <cmath>
#include <functional>
#include <random>
#include <sstream>

#include <gtest/gtest.h>

#include "geometry/KtCoordSystem.h"
#include "support/geometry_helpers.h"

namespace
{

constexpr float kQuarterTurn = 1.57079633f;

// The elementary matrices, written out as the frame's conventions draw them.
Kt4X4FloatMat translation(float x, float y, float z)
{
    Kt4X4FloatMat e;
    e.setRow(3, Kt4X4FloatMat::KtRow({x, y, z, 1.0f}));
    return e;
}

Kt4X4FloatMat scale(float x, float y, float z)
{
    Kt4X4FloatMat e;
    e[0][0] = x;
    e[1][1] = y;
    e[2][2] = z;
    return e;
}

Kt4X4FloatMat rotation(int axis, float a)
{
    float c = cosf(a);
    float s = sinf(a);
    Kt4X4FloatMat e;
    int p = (axis + 1) % 3; // the axis turned toward q
    int q = (axis + 2) % 3;
    e[p][p] = c;
    e[p][q] = s;
    e[q][p] = -s;
    e[q][q] = c;
    return e;
}

// A general matrix: not rigid, column 3 not (0, 0, 0, 1), so that a row or
// column operation that skips an element shows.
KtCoordSystem randomFrame(std::mt19937& random)
{
    std::uniform_real_distribution<float> value(-2.0f, 2.0f);
    KtCoordSystem frame;
    for (int i = 0; i < 4; ++i)
        for (int j = 0; j < 4; ++j)
            frame[i][j] = value(random);
    return frame;
}

KtPoint mapped(const KtPoint& p, const Kt4X4FloatMat& m)
{
    KtPoint result = p;
    result.applyMatrix(m);
    return result;
}

} // namespace

TEST(KtCoordSystem, PreRotationsOnTheIdentityGiveTheElementaryRows)
{
    // An angle whose float cosine and sine differ from the double ones
    // rounded to float, read at run time so that the library computes both.
    volatile float angle = 0x1.00b4aap-1f;
    const float a = angle;
    const float c = cosf(a);
    const float s = sinf(a);
    const float expected[3][3][3] = {{{1, 0, 0}, {0, c, s}, {0, -s, c}},
                                     {{c, 0, -s}, {0, 1, 0}, {s, 0, c}},
                                     {{c, s, 0}, {-s, c, 0}, {0, 0, 1}}};
    for (int axis = 0; axis < 3; ++axis)
    {
        KtCoordSystem frame;
        if (axis == 0)
            frame.preRotateX(a);
        else if (axis == 1)
            frame.preRotateY(a);
        else
            frame.preRotateZ(a);
        Kt4X4FloatMat rows;
        for (int i = 0; i < 3; ++i)
            for (int j = 0; j < 3; ++j)
                rows[i][j] = expected[axis][i][j];
        EXPECT_EQ(rows, frame) << "axis " << axis;
        if (axis == 0)
            frame.preRotateX(-a);
        else if (axis == 1)
            frame.preRotateY(-a);
        else
            frame.preRotateZ(-a);
        EXPECT_MATRIX_NEAR(Kt4X4FloatMat::MultiplicativeIdentity, frame);
    }
}

TEST(KtCoordSystem, PreOperationsMultiplyOnTheLeftPostOnTheRight)
{
    const float x = 0.6f;
    const float y = -1.3f;
    const float z = 2.2f;
    const float v[3] = {x, y, z};
    const float xAxis[3] = {3.0f, 0.0f, 0.0f};
    const float zAxis[3] = {0.0f, 0.0f, 0.5f};
    const struct
    {
        const char* name;
        std::function<void(KtCoordSystem&)> pre;
        std::function<void(KtCoordSystem&)> post;
        Kt4X4FloatMat elementary;
    } operations[] = {
        {"translate x",
         [&](KtCoordSystem& f) { f.preTranslateX(x); },
         [&](KtCoordSystem& f) { f.postTranslateX(x); },
         translation(x, 0, 0)},
        {"translate y",
         [&](KtCoordSystem& f) { f.preTranslateY(y); },
         [&](KtCoordSystem& f) { f.postTranslateY(y); },
         translation(0, y, 0)},
        {"translate z",
         [&](KtCoordSystem& f) { f.preTranslateZ(z); },
         [&](KtCoordSystem& f) { f.postTranslateZ(z); },
         translation(0, 0, z)},
        {"translate",
         [&](KtCoordSystem& f) { f.preTranslate(x, y, z); },
         [&](KtCoordSystem& f) { f.postTranslate(v); },
         translation(x, y, z)},
        {"scale",
         [&](KtCoordSystem& f) { f.preScale(v); },
         [&](KtCoordSystem& f) { f.postScale(x, y, z); },
         scale(x, y, z)},
        {"rotate x",
         [&](KtCoordSystem& f) { f.preRotateX(y); },
         [&](KtCoordSystem& f) { f.postRotateX(y); },
         rotation(0, y)},
        {"rotate y",
         [&](KtCoordSystem& f) { f.preRotateY(z); },
         [&](KtCoordSystem& f) { f.postRotateY(z); },
         rotation(1, z)},
        {"rotate z",
         [&](KtCoordSystem& f) { f.preRotateZ(x); },
         [&](KtCoordSystem& f) { f.postRotateZ(x); },
         rotation(2, x)},
        {"rotate about an x axis",
         [&](KtCoordSystem& f) { f.preRotateAxis(xAxis, y); },
         [&](KtCoordSystem& f) { f.postRotateAxis(xAxis, y); },
         rotation(0, y)},
        {"rotate about a z axis",
         [&](KtCoordSystem& f) { f.preRotateAxis(zAxis, z); },
         [&](KtCoordSystem& f) { f.postRotateAxis(zAxis, z); },
         rotation(2, z)},
    };
    std::mt19937 random(17);
    for (const auto& op : operations)
    {
        SCOPED_TRACE(op.name);
        KtCoordSystem frame = randomFrame(random);
        Kt4X4FloatMat expected;
        KtCoordSystem pre = frame;
        op.pre(pre);
        Kt4X4FloatMat::multiply(expected, op.elementary, frame);
        EXPECT_MATRIX_NEAR(expected, pre);
        KtCoordSystem post = frame;
        op.post(post);
        Kt4X4FloatMat::multiply(expected, frame, op.elementary);
        EXPECT_MATRIX_NEAR(expected, post);
    }
}

TEST(KtCoordSystem, TranslationAfterARotationFollowsTheRotatedAxes)
{
    KtCoordSystem frame;
    frame.preRotateZ(kQuarterTurn);
    frame.preTranslateX(5.0f);
    EXPECT_POINT_NEAR(KtPoint(0.0f, 5.0f, 0.0f), frame.translationVector());
    frame = 1.0f;
    frame.postRotateZ(kQuarterTurn);
    frame.postTranslateX(5.0f);
    EXPECT_POINT_NEAR(KtPoint(5.0f, 0.0f, 0.0f), frame.translationVector());
}

TEST(KtCoordSystem, BlockAccessorsTouchOnlyTheirBlock)
{
    KtCoordSystem frame;
    EXPECT_POINT_NEAR(KtPoint(), frame.translationVector());
    std::mt19937 random(23);
    KtCoordSystem general = randomFrame(random);
    Kt3X3FloatMat r;
    general.getRotationMatrix(&r);
    frame = general;
    frame[0][0] = 9.0f;
    frame.setRotationMatrix(r);
    EXPECT_EQ(general, frame);

    frame.setTranslationVector(KtPoint(1.0f, 2.0f, 3.0f));
    KtPoint origin;
    frame.getTranslationVector(&origin);
    EXPECT_EQ(1.0f, origin.x);
    EXPECT_EQ(3.0f, frame.translationVector().z);
    general.setRow(3, Kt4X4FloatMat::KtRow({1.0f, 2.0f, 3.0f, general[3][3]}));
    EXPECT_EQ(general, frame);
}

TEST(KtCoordSystem, AxisRotationTurnsAboutAnyAxis)
{
    const float axis[3] = {1.0f, -2.0f, 0.5f};
    KtCoordSystem frame;
    frame.preRotateAxis(axis, 1.1f);
    // The axis itself stays; the turn has the angle asked for.
    KtPoint a(axis[0], axis[1], axis[2]);
    EXPECT_POINT_NEAR(a, mapped(a, frame));
    float trace = frame[0][0] + frame[1][1] + frame[2][2];
    EXPECT_NEAR(1.0f + 2.0f * std::cos(1.1f), trace, kGeometryTolerance);
    // Right-handed: a positive turn about +Z takes X toward Y.
    const float zAxis[3] = {0.0f, 0.0f, 1.0f};
    KtCoordSystem turn;
    turn.postRotateAxis(zAxis, 0.3f);
    EXPECT_GT(mapped(KtPoint(1.0f, 0.0f, 0.0f), turn).y, 0.0f);

    const float none[3] = {0.0f, 0.0f, 0.0f};
    KtCoordSystem unchanged = frame;
    unchanged.preRotateAxis(none, 1.0f);
    unchanged.postRotateAxis(none, 1.0f);
    EXPECT_EQ(frame, unchanged);
}

TEST(KtCoordSystem, ShiftedRotationTurnsAboutTheGivenPoint)
{
    KtCoordSystem frame;
    frame.preRotateY(0.8f);
    frame.preRotateX(-0.4f);
    frame.setTranslationVector(KtPoint(1.0f, 2.0f, 3.0f));
    Kt3X3FloatMat r;
    frame.getRotationMatrix(&r);
    KtPoint pivot(4.0f, -1.0f, 2.0f);
    frame.shiftRotationPoint(pivot);

    EXPECT_POINT_NEAR(KtPoint(5.0f, 1.0f, 5.0f), mapped(pivot, frame));
    KtPoint offset(0.5f, 0.25f, -1.0f);
    KtPoint turned = offset;
    turned.applyMatrix(r);
    EXPECT_POINT_NEAR(
        KtPoint(turned.x + 5.0f, turned.y + 1.0f, turned.z + 5.0f),
        mapped(KtPoint(4.5f, -0.75f, 1.0f), frame));
    Kt3X3FloatMat kept;
    frame.getRotationMatrix(&kept);
    EXPECT_EQ(r, kept);
}

TEST(KtCoordSystem, ReorthogonalizeCleansOnlyTheRotationBlock)
{
    KtCoordSystem clean;
    clean.preRotateZ(0.3f);
    clean.preRotateX(1.2f);
    clean.setTranslationVector(KtPoint(7.0f, 8.0f, 9.0f));
    KtCoordSystem drifted = clean;
    drifted[0][1] += 1e-3f;
    drifted[2][2] -= 2e-3f;
    drifted.reorthogonalize();
    Kt3X3FloatMat r;
    drifted.getRotationMatrix(&r);
    Kt3X3FloatMat gram = r;
    gram.transpose();
    Kt3X3FloatMat::_multiply(gram.elements(), gram.elements(), r.elements());
    EXPECT_MATRIX_NEAR(Kt3X3FloatMat::MultiplicativeIdentity, gram);
    EXPECT_EQ(clean.translationVector().y, drifted.translationVector().y);
    EXPECT_EQ(1.0f, drifted[3][3]);
}

TEST(KtCoordSystem, PrintsOneBracketedLinePerRow)
{
    KtCoordSystem frame;
    frame.setTranslationVector(KtPoint(1.5f, -2.0f, 0.0f));
    std::ostringstream out;
    out << frame;
    EXPECT_EQ("[\n  [ 1 0 0 0]\n  [ 0 1 0 0]\n  [ 0 0 1 0]\n  [ 1.5 -2 0 1]\n]",
              out.str());
}
