// Cases for quaternion algebra, conversions, interpolation (with its cached-angle record) and
// rotation vectors.
#include <cmath>

#include "QZQuaternions.h"
#include "gen.h"

namespace qzgen {
namespace {

const double kPi = 3.141592653589793;

using qzgen::Randoms;
// n values from the range most cases of this module draw from.
Doubles Randoms(int n) { return Randoms(n, -1, 1); }
double Ulps(double x, int k) {
    for (; k > 0; --k) x = Up(x);
    for (; k < 0; ++k) x = Down(x);
    return x;
}
// Unit quaternion of a random rotation (normalised here, in the generator).
Doubles UnitQuat() {
    Doubles q = Randoms(4);
    double n = std::sqrt(q[0] * q[0] + q[1] * q[1] + q[2] * q[2] + q[3] * q[3]);
    for (double &x : q) x /= n;
    return q;
}
// Quaternion (0, 0, s, c) with c = d: its dot product with the identity (0, 0, 0, 1) is d.
Doubles WithDot(double d) { return {0.0, 0.0, std::sqrt(1 - d * d), d}; }
const Doubles kIdentityQ = {0.0, 0.0, 0.0, 1.0};
Doubles Rotation(const Doubles &r) {
    double m[9];
    axis_angle_to_rotmat(r.data(), m);
    return Doubles(m, m + 9);
}
// A half turn about the unit axis k: R = 2 k k^T - I, exactly symmetric.
Doubles HalfTurn(double x, double y, double z) {
    double n = std::sqrt(x * x + y * y + z * z);
    double k[3] = {x / n, y / n, z / n};
    Doubles m(9);
    for (int i = 0; i < 3; ++i)
        for (int j = 0; j < 3; ++j) m[i * 3 + j] = 2 * k[i] * k[j] - (i == j ? 1.0 : 0.0);
    return m;
}
Doubles Transform(const Doubles &r9, const Doubles &p) {
    return {r9[0], r9[1], r9[2], p[0], r9[3], r9[4], r9[5], p[1],
            r9[6], r9[7], r9[8], p[2], 0.0,   0.0,   0.0,   1.0};
}

void Algebra(Writer &w) {
    w.comment("products, aliased outputs, signed zeros");
    for (int k = 0; k < 12; ++k) {
        w.pure("QZ_QuatMult", "ordinary", Join({UnitQuat(), Randoms(4, -3, 3)}));
        w.pure("QZ_QuatMult.OutisA", "aliased", UnitQuat(), {}, UnitQuat());
        w.pure("QZ_QuatMult.OutisB", "aliased", UnitQuat(), {}, UnitQuat());
    }
    w.pure("QZ_QuatMult", "signed-zeros", {-0.0, -0.0, -0.0, -0.0, 0.0, -0.0, 0.0, 1.0});
    w.pure("QZ_QuatMult", "identity", Join({kIdentityQ, {0.1, -0.2, 0.3, -0.4}}));
    w.pure("QZ_QuatMult", "special", {kNaN, 0, 0, 1, kInf, 0, 0, 1});

    w.comment("normalisation guards: length 1e-16 (norm) and 1e-9 (inverse), one ulp either side");
    for (int k = 0; k < 6; ++k) {
        Doubles q = Randoms(4, -3, 3);
        w.pure("QZ_QuaternionNorm", "ordinary", {}, {}, q);
        w.pure("QZ_QuaternionSqrtNorm", "ordinary", q);
        w.pure("QZ_QuaternionConjugate", "ordinary", q);
        w.pure("QZ_QuaternionConjugate.same", "aliased", {}, {}, q);
        w.pure("QZ_QuaternionInverse", "ordinary", q);
        w.pure("QZ_QuaternionInverse.same", "aliased", {}, {}, q);
    }
    for (double len : Join({Around(1e-16), Around(1e-9), {0.0, -0.0}})) {
        Doubles q = {0.0, 0.0, 0.0, len}, spread = {len / 2, len / 2, len / 2, len / 2};
        for (const Doubles &v : {q, spread}) {
            w.pure("QZ_QuaternionNorm", "guard", {}, {}, v);
            w.pure("QZ_QuaternionInverse", "guard", v);
            w.pure("QZ_QuaternionInverse.same", "guard", {}, {}, v);
        }
    }
    for (const Doubles &q : {Doubles{kNaN, 0, 0, 1}, Doubles{kInf, 0, 0, 1},
                             Doubles{-0.0, 0.0, -0.0, -0.0}, Doubles{1e200, 1e200, 0, 0}}) {
        w.pure("QZ_QuaternionNorm", "special", {}, {}, q);
        w.pure("QZ_QuaternionSqrtNorm", "special", q);
        w.pure("QZ_QuaternionConjugate", "special", q);
        w.pure("QZ_QuaternionInverse", "special", q);
    }

    w.comment("angle between orientations: the 0.9999999999 clamp, q and -q, opposite turns");
    for (int k = 0; k < 10; ++k) {
        Doubles pair = Join({UnitQuat(), UnitQuat()});
        w.pure("QZ_QuaternionAngleDeg", "ordinary", pair);
        w.pure("QZ_QuaternionAngleArc", "ordinary", pair);
    }
    for (int k = -2; k <= 2; ++k)
        for (double sign : {1.0, -1.0}) {
            Doubles q2 = WithDot(Ulps(0.9999999999, k));
            for (double &x : q2) x *= sign;
            for (const char *fn : {"QZ_QuaternionAngleDeg", "QZ_QuaternionAngleArc"})
                w.pure(fn, "clamp", Join({kIdentityQ, q2}));
        }
    for (const Doubles &q2 : {kIdentityQ, Doubles{-0.0, -0.0, -0.0, -1.0}, Doubles{1, 0, 0, 0},
                              WithDot(0.0), Doubles{kNaN, 0, 0, 1}})
        for (const char *fn : {"QZ_QuaternionAngleDeg", "QZ_QuaternionAngleArc"})
            w.pure(fn, "edge", Join({kIdentityQ, q2}));
}
Register algebra("QZQuaternions_algebra", Algebra);

void Conversions(Writer &w) {
    w.comment("matrix to quaternion: each of the four forms, their ties, half turns");
    Doubles axes[] = {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}, {1, 1, 0},
                      {0, 1, 1}, {1, 0, 1}, {1, 1, 1}, {1, -1, 0.5}};
    for (int k = 0; k < 12; ++k) {
        Doubles r = Rotation(Randoms(3, -2, 2));
        w.pure("QZ_Matrix2Quaternion3", "ordinary", r);
        Doubles t = Transform(r, Randoms(3, -2, 2));
        w.pure("QZ_Matrix2Quaternion4", "ordinary", t);
        w.pure("QZ_Matrix2PosQuat", "ordinary", t);
    }
    for (const Doubles &a : axes) {
        Doubles h = HalfTurn(a[0], a[1], a[2]);
        w.pure("QZ_Matrix2Quaternion3", "half-turn", h);
        w.pure("QZ_Matrix2Quaternion4", "half-turn", Transform(h, {0, 0, 0}));
        w.pure("QZ_Matrix2PosQuat", "half-turn", Transform(h, {1, 2, 3}));
    }
    // the trace at 0 and one step either side; diagonal ties between the axis forms
    const Doubles diag[] = {{0, 0, 0},      {FromBits(1), 0, 0}, {-FromBits(1), 0, 0},
                            {1, 1, -1},     {-1, -1, -1},        {0.5, 0.5, -1},
                            {-1, 0.5, 0.5}, {-0.0, -0.0, -0.0}};
    for (const Doubles &d : diag)
        w.pure("QZ_Matrix2Quaternion3", "form-boundary", {d[0], 0, 0, 0, d[1], 0, 0, 0, d[2]});
    w.pure("QZ_Matrix2Quaternion3", "permutation", {0, 0, 1, 1, 0, 0, 0, 1, 0});
    w.pure("QZ_Matrix2Quaternion3", "not-a-rotation", {-2, 0, 0, 0, -2, 0, 0, 0, -2});
    w.pure("QZ_Matrix2Quaternion3", "nan", {kNaN, 0, 0, 0, 1, 0, 0, 0, 1});

    w.comment("quaternion to matrix and poses; the pose normaliser's 1e-16 guard");
    for (int k = 0; k < 10; ++k) {
        Doubles q = UnitQuat();
        w.pure("QZ_Quaternion2Matrix3", "ordinary", q);
        w.pure("QZ_Quaternion2Matrix4", "ordinary", q);
        Doubles pose = Join({Randoms(3, -2, 2), q});
        w.pure("QZ_PosQuat2Matrix", "ordinary", pose);
        Doubles scaled = Join({Randoms(3, -2, 2), Randoms(4, -3, 3)});
        w.pure("QZ_PosQuat2Matrix_UnNorm", "ordinary", {}, {}, scaled);
    }
    w.pure("QZ_Quaternion2Matrix3", "signed-zeros", {-0.0, -0.0, -0.0, -1.0});
    w.pure("QZ_Quaternion2Matrix4", "not-unit", {1, 2, 3, 4});
    w.pure("QZ_PosQuat2Matrix", "signed-zeros", {-0.0, -0.0, -0.0, -0.0, -0.0, -0.0, 1.0});
    for (double len : Join({Around(1e-16), {0.0}}))
        w.pure("QZ_PosQuat2Matrix_UnNorm", "guard", {}, {}, {1, 2, 3, 0, 0, 0, len});
    w.pure("QZ_PosQuat2Matrix_UnNorm", "nan", {}, {}, {1, 2, 3, kNaN, 0, 0, 1});

    w.comment("XYZABC (degrees) to position and quaternion, in place");
    for (int k = 0; k < 10; ++k)
        w.pure("QZ_XYZABC2XYZQ", "ordinary", {}, {},
               Join({Randoms(3, -2, 2), Randoms(3, -180, 180), {AnyBits(), AnyBits()}}));
    for (double b : {90.0, -90.0, 180.0, 0.0, -0.0})
        w.pure("QZ_XYZABC2XYZQ", "quadrant", {}, {}, {1, 2, 3, 30, b, -45, 0, 0});
    w.pure("QZ_XYZABC2XYZQ", "half-turns", {}, {}, {0, 0, 0, 180, 0, 180, 0, 0});
    w.pure("QZ_XYZABC2XYZQ", "nan", {}, {}, {0, 0, 0, kNaN, 0, 0, 0, 0});
}
Register conversions("QZQuaternions_conversions", Conversions);

const double kTs[] = {0.0, -0.0, 0.25, 0.5, 1.0, -0.5, 1.5};

void Interpolation(Writer &w) {
    w.comment("slerp: the 0.001 linear band of the dot product, one ulp either side, both signs");
    for (int k = 0; k < 8; ++k) {
        Doubles q1 = UnitQuat(), q2 = UnitQuat();
        double t = Uniform(0, 1);
        w.pure("QZ_QuatSlerp", "ordinary", Join({q1, {t}}), {}, q2);
        w.pure("QZ_QuatSlerpL", "ordinary", Join({q1, q2, {t}}));
        w.pure("QZ_QuatSlerpDir", "ordinary", Join({q1, q2, Randoms(3)}));
    }
    for (int k = -2; k <= 2; ++k)
        for (double sign : {1.0, -1.0}) {
            Doubles q2 = WithDot(Ulps(0.999, k));
            for (double &x : q2) x *= sign;
            for (double t : {0.3, 1.0}) {
                w.pure("QZ_QuatSlerp", "band", Join({kIdentityQ, {t}}), {}, q2);
                w.pure("QZ_QuatSlerpL", "band", Join({kIdentityQ, q2, {t}}));
            }
        }
    for (const Doubles &q2 :
         {kIdentityQ, Doubles{-0.0, -0.0, -0.0, -1.0}, Doubles{1, 0, 0, -0.0}, Doubles{1, 0, 0, 0}})
        for (double t : kTs) {
            w.pure("QZ_QuatSlerp", "edge", Join({kIdentityQ, {t}}), {}, q2);
            w.pure("QZ_QuatSlerpL", "edge", Join({kIdentityQ, q2, {t}}));
        }
    w.pure("QZ_QuatSlerp", "nan", Join({kIdentityQ, {0.5}}), {}, {kNaN, 0, 0, 1});

    w.comment("cached slerp: sequences over t, the sign choice on q2, re-initialisation");
    struct Pair {
        const char *label;
        Doubles q1, q2;
    };
    const Pair pairs[] = {{"random", UnitQuat(), UnitQuat()},
                          {"negated", kIdentityQ, {-0.6, 0.0, 0.0, -0.8}},
                          {"band-inside", kIdentityQ, WithDot(Ulps(0.999, 2))},
                          {"band-outside", kIdentityQ, WithDot(Ulps(0.999, -2))},
                          {"equal", kIdentityQ, kIdentityQ},
                          {"opposite", kIdentityQ, {0.0, 0.0, 0.0, -1.0}},
                          {"perpendicular", kIdentityQ, {1.0, 0.0, 0.0, -0.0}}};
    for (const char *fn : {"QZ_QuatSlerpFactor", "QZ_QuatSlerpFactorL"}) {
        for (const Pair &p : pairs) {
            w.seq("QZSlerpFactorState", std::string(fn) + "-" + p.label);
            Doubles q2 = p.q2;
            for (int k = 0; k <= 10; ++k) {
                const qzc_frame &f = w.op(fn, Join({p.q1, {k / 10.0}}), {}, q2);
                q2.assign(f.x, f.x + 4);  // later calls pass the same, possibly negated, array
            }
            w.op(fn, Join({p.q1, {-0.25}}), {}, q2);
            w.op(fn, Join({p.q1, {1.25}}), {}, q2);
            w.state();
            // a new pair: cleared flag, the cached angle worked out again
            w.set_int("initialized", 0);
            Doubles q3 = UnitQuat();
            for (double t : {0.0, 0.5, 1.0}) {
                const qzc_frame &f = w.op(fn, Join({p.q2, {t}}), {}, q3);
                q3.assign(f.x, f.x + 4);
            }
            w.end();
        }
        // a record that was never cleared: any nonzero flag skips the set-up, and any weight
        // selector other than 1 means linear weights
        w.seq("QZSlerpFactorState", std::string(fn) + "-uncleared");
        w.fill(0xff);
        w.op(fn, Join({kIdentityQ, {0.5}}), {}, UnitQuat());
        w.set_int("useSpherical", 1);
        w.set("theta", 1.0);
        w.set("sinTheta", 0.8414709848078965);
        w.op(fn, Join({kIdentityQ, {0.5}}), {}, UnitQuat());
        w.end();
    }

    w.comment("turn sense about an axis: no turn, half turns, zero and reversed axes");
    const Doubles quarterZ = {0, 0, std::sqrt(0.5), std::sqrt(0.5)};
    w.pure("QZ_QuatSlerpDir", "quarter", Join({kIdentityQ, quarterZ, {0, 0, 1}}));
    w.pure("QZ_QuatSlerpDir", "quarter-reversed", Join({kIdentityQ, quarterZ, {0, 0, -1}}));
    w.pure("QZ_QuatSlerpDir", "quarter-long-axis", Join({kIdentityQ, quarterZ, {0, 0, 1e6}}));
    w.pure("QZ_QuatSlerpDir", "no-turn", Join({quarterZ, quarterZ, {0, 0, 1}}));
    w.pure("QZ_QuatSlerpDir", "half-turn", Join({kIdentityQ, {0, 0, 1, 0}, {0, 0, 1}}));
    w.pure("QZ_QuatSlerpDir", "half-turn", Join({kIdentityQ, {0, 0, 1, 0}, {0, 0, -1}}));
    w.pure("QZ_QuatSlerpDir", "half-turn", Join({kIdentityQ, {0, 0, -1, -0.0}, {0, 0, 1}}));
    w.pure("QZ_QuatSlerpDir", "zero-axis", Join({kIdentityQ, quarterZ, {0, 0, 0}}));
    w.pure("QZ_QuatSlerpDir", "axis-along-x", Join({kIdentityQ, quarterZ, {1, 0, 0}}));
    w.pure("QZ_QuatSlerpDir", "nan", Join({kIdentityQ, quarterZ, {kNaN, 0, 1}}));
}
Register interpolation("QZQuaternions_interpolation", Interpolation);

void AxisAngle(Writer &w) {
    w.comment("rotation vectors: the 1e-10 floor, angles around pi - 1e-5, exact half turns");
    for (int k = 0; k < 12; ++k) {
        Doubles r = Randoms(3, -2, 2);
        w.pure("axis_angle_to_rotmat", "ordinary", r);
        w.pure("rotmat_to_axis_angle", "ordinary", Rotation(r));
        w.pure("AngleMult", "ordinary", Join({r, Randoms(3, -2, 2)}));
        w.pure("relative_rotation", "ordinary", Join({Rotation(r), Rotation(Randoms(3, -2, 2))}));
        w.pure("relative_Angle", "ordinary", Join({r, Randoms(3, -2, 2)}));
    }
    for (double len : Join({Around(1e-10), {0.0, 1.5e-8, 1e-6}})) {
        w.pure("axis_angle_to_rotmat", "floor", {len, 0, 0});
        w.pure("axis_angle_to_rotmat", "floor", {0, len * 0.6, len * 0.8});
        w.pure("rotmat_to_axis_angle", "floor", Rotation({0, len * 0.6, len * 0.8}));
    }
    w.pure("axis_angle_to_rotmat", "signed-zeros", {-0.0, -0.0, -0.0});
    w.pure("axis_angle_to_rotmat", "half-turn", {kPi, 0, 0});
    w.pure("axis_angle_to_rotmat", "nan", {kNaN, 0, 0});
    // a trace whose (trace - 1) / 2 is exactly at and around cos(1e-10) cannot be reached by a
    // rotation; these near-identity matrices put the trace one step below 3 instead
    for (int k = 1; k <= 3; ++k)
        w.pure("rotmat_to_axis_angle", "near-identity",
               {Ulps(1.0, -k), 1e-9, 0, -1e-9, 1, 0, 0, 0, 1});
    for (int k = -3; k <= 3; ++k) {
        double a = Ulps(kPi - 1e-5, k);
        w.pure("rotmat_to_axis_angle", "half-turn-band", Rotation({a * 0.48, a * -0.6, a * 0.64}));
    }
    for (double a : {kPi - 1e-4, kPi - 2e-5, kPi - 1e-6, kPi})
        w.pure("rotmat_to_axis_angle", "near-half-turn", Rotation({0, a * 0.6, -a * 0.8}));
    const Doubles axes[] = {{1, 0, 0}, {0, 1, 0}, {0, 0, 1},  {1, 1, 0},
                            {0, 1, 1}, {1, 1, 1}, {-1, 1, 0}, {1, -2, 0.5}};
    for (const Doubles &a : axes) {
        Doubles h = HalfTurn(a[0], a[1], a[2]);
        w.pure("rotmat_to_axis_angle", "half-turn", h);
        w.pure("relative_rotation", "half-turn", Join({h, Rotation({0, 0, 0})}));
    }
    w.pure("rotmat_to_axis_angle", "identity", {1, 0, 0, 0, 1, 0, 0, 0, 1});
    w.pure("rotmat_to_axis_angle", "signed-zeros", {1, -0.0, -0.0, -0.0, 1, -0.0, -0.0, -0.0, 1});
    w.pure("rotmat_to_axis_angle", "nan", {kNaN, 0, 0, 0, 1, 0, 0, 0, 1});

    w.comment("compositions: inverse pairs, half turns, the identity");
    const Doubles r = {0.3, -0.4, 1.2}, neg = {-0.3, 0.4, -1.2};
    for (const char *fn : {"AngleMult", "relative_Angle"}) {
        w.pure(fn, "inverse-pair", Join({r, neg}));
        w.pure(fn, "equal", Join({r, r}));
        w.pure(fn, "identity", Join({{0, 0, 0}, r}));
        w.pure(fn, "half-turns", Join({{kPi, 0, 0}, {0, kPi, 0}}));
        w.pure(fn, "signed-zeros", {-0.0, -0.0, -0.0, -0.0, -0.0, -0.0});
    }
    w.pure("relative_rotation", "same", Join({Rotation(r), Rotation(r)}));
}
Register axisAngle("QZQuaternions_axis_angle", AxisAngle);

}  // namespace
}  // namespace qzgen
