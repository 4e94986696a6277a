// Fuzz target for QZQuaternions: quaternion algebra, conversions to and from matrices and poses,
// interpolation (with the cached-angle state driven through sequences of calls) and rotation
// vectors.
//
// Each input is a sequence of operations; an operation byte picks a function, the following
// bytes its arguments. Besides crashes, sanitizer reports and hangs, the target checks where
// results go: inputs readable over exactly what the function reads (a transform's rotation
// block alone where the header says so), outputs left alone on failure, in-place forms giving
// the same bits as the separate ones, q2 only ever left as it was or negated by the slerps that
// may negate it, and the cached slerp agreeing with the plain one call after call.
#include <cmath>
#include <cstdint>
#include <cstring>
#include <initializer_list>

#include "QZQuaternions.h"
#include "fuzz_region.h"
#include "fuzz_support.h"

using namespace qzfuzz;

namespace {

bool SameArray(const double *a, const double *b, int n) {
    return std::memcmp(a, b, sizeof(double) * static_cast<std::size_t>(n)) == 0;
}

// Fills a quaternion: raw values, or (most of the time) scaled to unit length, the inputs the
// functions are meant for.
void Quat(Input &in, double *q) {
    for (int i = 0; i < 4; ++i) q[i] = in.Double();
    if (in.Byte() & 3) {
        const double l = std::sqrt(q[0] * q[0] + q[1] * q[1] + q[2] * q[2] + q[3] * q[3]);
        if (l > 0.0 && std::isfinite(l)) {
            for (int i = 0; i < 4; ++i) q[i] /= l;
        }
    }
}

// Whether q holds p, or p negated component by component (sign bits flipped).
bool SameOrNegated(const double *q, const double *p) {
    bool same = true, neg = true;
    for (int i = 0; i < 4; ++i) {
        same = same && BitsOf(q[i]) == BitsOf(p[i]);
        neg = neg && BitsOf(q[i]) == (BitsOf(p[i]) ^ 0x8000000000000000ull);
    }
    return same || neg;
}

// One pair of end quaternions with its cached-angle state, kept across the operations of an
// input so that the state is reused over many calls.
struct Pair {
    Guarded<QZSlerpFactorState> state;
    Out<double, 4> q1, q2;
    bool ready = false;    // q1 and q2 hold a pair
    bool flagSet = false;  // the weights flag was overwritten: no plain slerp to compare with
};

struct Records {
    Pair shorter, longer;
};

void Algebra(Input &in, int op) {
    In<4> a, b;
    Quat(in, &a[0]);
    Quat(in, &b[0]);
    Out<double, 4> o, alias;
    switch (op % 7) {
        case 0: {
            QZ_QuatMult(a.Exact(4), b.Exact(4), o.get());
            a.Release("QZ_QuatMult");
            b.Release("QZ_QuatMult");
            o.Check(4, "QZ_QuatMult");
            const bool outIsA = (in.Byte() & 1) != 0;
            for (int i = 0; i < 4; ++i) alias[i] = outIsA ? a[i] : b[i];
            QZ_QuatMult(outIsA ? alias.get() : &a[0], outIsA ? &b[0] : alias.get(), alias.get());
            QZ_FUZZ_CHECK(SameArray(alias.get(), o.get(), 4), "QZ_QuatMult aliased output differs");
            break;
        }
        case 1: {
            for (int i = 0; i < 4; ++i) o[i] = a[i];
            const uint32_t r = QZ_QuaternionNorm(o.get());
            o.Check(4, "QZ_QuaternionNorm");
            QZ_FUZZ_CHECK(r <= 1, "QZ_QuaternionNorm result");
            if (r == 0) QZ_FUZZ_CHECK(SameArray(o.get(), &a[0], 4), "QZ_QuaternionNorm refusal");
            break;
        }
        case 2: {
            const double l = QZ_QuaternionSqrtNorm(a.Exact(4));
            a.Release("QZ_QuaternionSqrtNorm");
            QZ_FUZZ_CHECK(l != l || l >= 0.0, "QZ_QuaternionSqrtNorm sign");
            break;
        }
        case 3:
        case 4: {
            const bool inverse = op % 7 == 4;
            const uint32_t r = inverse ? QZ_QuaternionInverse(a.Exact(4), o.get())
                                       : (QZ_QuaternionConjugate(a.Exact(4), o.get()), 1u);
            a.Release("QZ_QuaternionConjugate/Inverse");
            QZ_FUZZ_CHECK(r <= 1, "QZ_QuaternionInverse result");
            o.Check(r ? 4 : 0, "QZ_QuaternionConjugate/Inverse");
            // In place: the same bits, q unchanged on a refusal.
            for (int i = 0; i < 4; ++i) alias[i] = a[i];
            const uint32_t r2 = inverse ? QZ_QuaternionInverse(alias.get(), alias.get())
                                        : (QZ_QuaternionConjugate(alias.get(), alias.get()), 1u);
            QZ_FUZZ_CHECK(r2 == r && SameArray(alias.get(), r ? o.get() : &a[0], 4),
                          "QZ_QuaternionConjugate/Inverse in place");
            break;
        }
        default: {
            const bool deg = op % 7 == 5;
            const double r = deg ? QZ_QuaternionAngleDeg(a.Exact(4), b.Exact(4))
                                 : QZ_QuaternionAngleArc(a.Exact(4), b.Exact(4));
            a.Release("QZ_QuaternionAngle");
            b.Release("QZ_QuaternionAngle");
            const double lo = deg ? 0.0016205694361395497 : 2.8284272417823128e-05;
            const double hi = deg ? 180.0 : 3.1415926535897932;
            QZ_FUZZ_CHECK(r != r || (r >= lo && r <= hi), "QZ_QuaternionAngle range");
            break;
        }
    }
}

void Conversions(Input &in, int op) {
    In<16> m;
    m.Fill(in);
    In<4> q;
    Quat(in, &q[0]);
    Out<double, 16> o;
    switch (op % 8) {
        case 0:
            QZ_Matrix2Quaternion3(m.Exact(9), o.get());
            m.Release("QZ_Matrix2Quaternion3");
            o.Check(4, "QZ_Matrix2Quaternion3");
            break;
        case 1:
        case 2: {
            // Only the rotation block is read (and for the pose, the position too).
            const bool pose = op % 8 == 2;
            Region<double, 16> t;
            for (int i = 0; i < 16; ++i) t[i] = m[i];
            t.Open(3, pose ? 4 : 3, 4);
            pose ? QZ_Matrix2PosQuat(t.get(), o.get()) : QZ_Matrix2Quaternion4(t.get(), o.get());
            t.Close("QZ_Matrix2Quaternion4/PosQuat", false);
            o.Check(pose ? 7 : 4, "QZ_Matrix2Quaternion4/PosQuat");
            if (pose) {
                QZ_FUZZ_CHECK(BitsOf(o[0]) == BitsOf(m[3]) && BitsOf(o[1]) == BitsOf(m[7]) &&
                                  BitsOf(o[2]) == BitsOf(m[11]),
                              "QZ_Matrix2PosQuat position");
            }
            break;
        }
        case 3:
            QZ_Quaternion2Matrix3(q.Exact(4), o.get());
            q.Release("QZ_Quaternion2Matrix3");
            o.Check(9, "QZ_Quaternion2Matrix3");
            break;
        case 4:
            QZ_Quaternion2Matrix4(q.Exact(4), o.get());
            q.Release("QZ_Quaternion2Matrix4");
            o.Check(16, "QZ_Quaternion2Matrix4");
            for (int i : {3, 7, 11, 12, 13, 14, 15})
                QZ_FUZZ_CHECK(o[i] == 0.0, "QZ_Quaternion2Matrix4 zeros");
            break;
        case 5:
        case 6: {
            // A pose: position from the matrix input, quaternion as drawn.
            const bool unnorm = op % 8 == 6;
            Out<double, 7> pose;
            for (int i = 0; i < 3; ++i) pose[i] = m[i];
            for (int i = 0; i < 4; ++i) pose[3 + i] = q[i];
            if (unnorm) {
                const uint32_t r = QZ_PosQuat2Matrix_UnNorm(pose.get(), o.get());
                QZ_FUZZ_CHECK(r == 1, "QZ_PosQuat2Matrix_UnNorm result");
                pose.Check(7, "QZ_PosQuat2Matrix_UnNorm pose");
                QZ_FUZZ_CHECK(SameArray(pose.get(), &m[0], 3),
                              "QZ_PosQuat2Matrix_UnNorm position changed");
            } else {
                In<7> p;
                for (int i = 0; i < 7; ++i) p[i] = pose[i];
                QZ_PosQuat2Matrix(p.Exact(7), o.get());
                p.Release("QZ_PosQuat2Matrix");
            }
            o.Check(16, "QZ_PosQuat2Matrix");
            QZ_FUZZ_CHECK(o[12] == 0.0 && o[13] == 0.0 && o[14] == 0.0 && o[15] == 1.0,
                          "QZ_PosQuat2Matrix bottom row");
            break;
        }
        default: {
            Out<double, 8> buf;
            for (int i = 0; i < 6; ++i) buf[i] = m[i];
            const uint32_t r = QZ_XYZABC2XYZQ(buf.get());
            buf.Check(8, "QZ_XYZABC2XYZQ");
            QZ_FUZZ_CHECK(r <= 1, "QZ_XYZABC2XYZQ result");
            QZ_FUZZ_CHECK(SameArray(buf.get(), &m[0], 3) && BitsOf(buf[7]) == 0,
                          "QZ_XYZABC2XYZQ position or last slot");
            break;
        }
    }
}

// One call of the cached slerp on a pair, checked against the plain slerp on copies of the same
// arrays: the same q2 afterwards and the same result bits.
void FactorStep(Pair &p, bool longer, double t, bool compare) {
    const char *where = longer ? "QZ_QuatSlerpFactorL" : "QZ_QuatSlerpFactor";
    In<4> q1c, q2c;
    for (int i = 0; i < 4; ++i) {
        q1c[i] = p.q1[i];
        q2c[i] = p.q2[i];
    }
    const bool first = p.state->initialized == 0;
    Out<double, 4> o;
    longer ? QZ_QuatSlerpFactorL(p.q1.get(), p.q2.get(), t, o.get(), p.state.get())
           : QZ_QuatSlerpFactor(p.q1.get(), p.q2.get(), t, o.get(), p.state.get());
    p.state.Check(where);
    p.q1.Check(4, where);
    p.q2.Check(4, where);
    o.Check(4, where);
    QZ_FUZZ_CHECK(p.state->initialized != 0, "slerp state not marked initialized");
    QZ_FUZZ_CHECK(SameArray(p.q1.get(), &q1c[0], 4), "slerp changed q1");
    QZ_FUZZ_CHECK(SameOrNegated(p.q2.get(), &q2c[0]), "slerp wrote q2 other than negating it");
    if (!first)
        QZ_FUZZ_CHECK(SameArray(p.q2.get(), &q2c[0], 4), "slerp changed q2 after the first call");
    if (!compare) return;
    Out<double, 4> ref;
    Out<double, 4> q2r;
    for (int i = 0; i < 4; ++i) q2r[i] = q2c[i];
    if (longer) {
        QZ_QuatSlerpL(q1c.Exact(4), q2c.Exact(4), t, ref.get());
        q1c.Release("QZ_QuatSlerpL");
        q2c.Release("QZ_QuatSlerpL");
    } else {
        QZ_QuatSlerp(q1c.Exact(4), q2r.get(), t, ref.get());
        q1c.Release("QZ_QuatSlerp");
        QZ_FUZZ_CHECK(SameArray(q2r.get(), p.q2.get(), 4),
                      "QZ_QuatSlerp and QZ_QuatSlerpFactor left q2 differently");
    }
    QZ_FUZZ_CHECK(SameArray(ref.get(), o.get(), 4), "cached slerp differs from the plain slerp");
}

void Interpolation(Input &in, Records &R, int op) {
    switch (op % 6) {
        case 0: {
            In<4> q1;
            Out<double, 4> q2, o;
            Quat(in, &q1[0]);
            double q2c[4];
            Quat(in, q2c);
            if ((in.Byte() & 7) == 0) std::memcpy(q2c, &q1[0], sizeof q2c);  // the same orientation
            for (int i = 0; i < 4; ++i) q2[i] = q2c[i];
            QZ_QuatSlerp(q1.Exact(4), q2.get(), in.Double(), o.get());
            q1.Release("QZ_QuatSlerp");
            q2.Check(4, "QZ_QuatSlerp q2");
            o.Check(4, "QZ_QuatSlerp");
            QZ_FUZZ_CHECK(SameOrNegated(q2.get(), q2c),
                          "QZ_QuatSlerp wrote q2 other than negating it");
            break;
        }
        case 1: {
            In<4> q1, q2;
            Quat(in, &q1[0]);
            Quat(in, &q2[0]);
            if ((in.Byte() & 7) == 0) {
                for (int i = 0; i < 4; ++i) q2[i] = q1[i];
            }
            Out<double, 4> o;
            QZ_QuatSlerpL(q1.Exact(4), q2.Exact(4), in.Double(), o.get());
            q1.Release("QZ_QuatSlerpL");
            q2.Release("QZ_QuatSlerpL");
            o.Check(4, "QZ_QuatSlerpL");
            break;
        }
        case 2:
        case 3: {
            // A new pair for one of the cached states.
            Pair &p = op % 6 == 2 ? R.shorter : R.longer;
            Quat(in, p.q1.get());
            Quat(in, p.q2.get());
            if ((in.Byte() & 7) == 0) std::memcpy(p.q2.get(), p.q1.get(), 4 * sizeof(double));
            p.state->initialized = 0;
            p.ready = true;
            p.flagSet = false;
            break;
        }
        case 4: {
            // A run of steps along a pair: t rising evenly from a start, or drawn each time.
            const bool longer = in.Byte() & 1;
            Pair &p = longer ? R.longer : R.shorter;
            if (!p.ready) return;
            const int k = 1 + in.Byte() % 16;
            const bool even = in.Byte() & 1;
            const double t0 = in.Double(), dt = in.Within(0.0, 0.25);
            for (int i = 0; i < k; ++i)
                FactorStep(p, longer, even ? t0 + dt * i : in.Double(), !p.flagSet);
            break;
        }
        default: {
            // The weights flag holds any value (any other than 1 asks for linear weights).
            const bool longer = in.Byte() & 1;
            Pair &p = longer ? R.longer : R.shorter;
            if (!p.ready || p.state->initialized == 0) return;
            p.state->useSpherical = in.Byte();
            p.flagSet = true;
            FactorStep(p, longer, in.Double(), false);
            break;
        }
    }
}

void Direction(Input &in) {
    In<4> q1, q2;
    In<3> axis;
    Quat(in, &q1[0]);
    Quat(in, &q2[0]);
    axis.Fill(in);
    const int32_t r = QZ_QuatSlerpDir(q1.Exact(4), q2.Exact(4), axis.Exact(3));
    q1.Release("QZ_QuatSlerpDir");
    q2.Release("QZ_QuatSlerpDir");
    axis.Release("QZ_QuatSlerpDir");
    QZ_FUZZ_CHECK(r == 1 || r == -1, "QZ_QuatSlerpDir result");
}

// A rotation matrix from three angles, or raw entries.
void Rotation(Input &in, double *R) {
    for (int i = 0; i < 9; ++i) R[i] = in.Double();
    if (in.Byte() & 1) return;
    const double a = R[0], b = R[1], c = R[2];
    const double ca = std::cos(a), sa = std::sin(a), cb = std::cos(b), sb = std::sin(b);
    const double cc = std::cos(c), sc = std::sin(c);
    const double M[9] = {cc * cb,
                         cc * sb * sa - sc * ca,
                         cc * sb * ca + sc * sa,
                         sc * cb,
                         sc * sb * sa + cc * ca,
                         sc * sb * ca - cc * sa,
                         -sb,
                         cb * sa,
                         cb * ca};
    std::memcpy(R, M, sizeof M);
}

void AxisAngle(Input &in, int op) {
    In<9> A, B;
    Out<double, 9> o;
    switch (op % 5) {
        case 0:
            A.Fill(in);
            axis_angle_to_rotmat(A.Exact(3), o.get());
            o.Check(9, "axis_angle_to_rotmat");
            break;
        case 1:
            Rotation(in, &A[0]);
            rotmat_to_axis_angle(A.Exact(9), o.get());
            o.Check(3, "rotmat_to_axis_angle");
            break;
        case 2:
            A.Fill(in);
            B.Fill(in);
            AngleMult(A.Exact(3), B.Exact(3), o.get());
            o.Check(3, "AngleMult");
            break;
        case 3:
            Rotation(in, &A[0]);
            Rotation(in, &B[0]);
            relative_rotation(A.Exact(9), B.Exact(9), o.get());
            o.Check(9, "relative_rotation");
            break;
        default:
            A.Fill(in);
            B.Fill(in);
            relative_Angle(A.Exact(3), B.Exact(3), o.get());
            o.Check(3, "relative_Angle");
            break;
    }
    A.Release("rotation vectors");
    B.Release("rotation vectors");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    Input in(data, size);
    Records R;
    while (!in.Done()) {
        const std::uint8_t op = in.Byte();
        switch (op % 5) {
            case 0: Algebra(in, op / 5); break;
            case 1: Conversions(in, op / 5); break;
            case 2: Interpolation(in, R, op / 5); break;
            case 3: Direction(in); break;
            default: AxisAngle(in, op / 5); break;
        }
    }
    return 0;
}
