// Cases for the scalar primitives, the polynomial solvers and the plane geometry helpers.
#include <cmath>

#include "gen.h"

namespace qzgen {
namespace {

const double kPi = 3.141592653589793;
const double kHalfPi = 1.5707963267948966;

Doubles AnyBitsN(int n) {
    Doubles v;
    for (int k = 0; k < n; ++k) v.push_back(AnyBits());
    return v;
}

void Unary(Writer &w, const char *fn, const Doubles &curated, const Doubles &ordinary) {
    for (double x : Specials()) w.pure(fn, "special", {x});
    for (double x : curated) w.pure(fn, "edge", {x});
    for (double x : ordinary) w.pure(fn, "ordinary", {x});
}

void Binary(Writer &w, const char *fn, const Doubles &grid, int random, double lo, double hi,
            bool zeroTieOpen = false) {
    for (double a : grid)
        for (double b : grid) {
            // fmax and fmin may return either zero for +0 against -0: the result is the
            // platform's choice (glibc, the compiler's inline expansion and aarch64 differ).
            bool open = zeroTieOpen && a == 0 && b == 0 && std::signbit(a) != std::signbit(b);
            w.pure(fn, open ? "?zero-tie" : "grid", {a, b});
        }
    for (int k = 0; k < random; ++k) w.pure(fn, "ordinary", {Uniform(lo, hi), Uniform(lo, hi)});
}

void Scalars(Writer &w) {
    w.comment("square root, absolute value, cube root (pow), NaN and signed zeros included");
    Unary(w, "QZ_Sqrt", Join({{-1.0, 1.0, 2.0, 4.0, -FromBits(1)}, Around(1e-300)}),
          Join({Randoms(60, 0, 1e6), AnyBitsN(20)}));
    Unary(w, "QZ_Fabs", {-1.0, 1.0, -3.5}, AnyBitsN(20));
    Unary(w, "QZ_3Root", Join({{8.0, -8.0, 27.0, 64.0, 1000.0, 0.125, 1e-300}, Around(1.0)}),
          Join({Randoms(150, 0, 1e6), Randoms(100, 0, 1), AnyBitsN(20)}));

    w.comment(
        "sines and cosines (libm sin): quadrant points, one ulp around them, large arguments");
    Doubles arc = Join({Around(kHalfPi),
                        Around(kPi),
                        Around(-kHalfPi),
                        Around(2 * kPi),
                        {1e-8, 1e-300, 1e22, -1e22, 1e300, 0.5, 1.0, 3.0}});
    Doubles arcRandom = Join({Randoms(200, -10, 10), Randoms(40, -1e6, 1e6), AnyBitsN(20)});
    Unary(w, "QZ_SIN_ARC", arc, arcRandom);
    Unary(w, "QZ_COS_ARC", arc, arcRandom);
    Doubles deg =
        Join({{0.0, 30.0, 45.0, 60.0, 90.0, 180.0, 270.0, 360.0, -90.0, -180.0, 720.0, 1e20},
              Around(180.0),
              Around(90.0)});
    Doubles degRandom = Join({Randoms(150, -720, 720), AnyBitsN(10)});
    Unary(w, "QZ_SIN_DEG", deg, degRandom);
    Unary(w, "QZ_COS_DEG", deg, degRandom);
    for (const char *fn : {"QZ_SIN_COS_ARC", "QZ_SIN_COS_ARC.same"})
        Unary(w, fn, arc, Randoms(40, -10, 10));
    for (const char *fn : {"QZ_SIN_COS_DEG", "QZ_SIN_COS_DEG.same"})
        Unary(w, fn, deg, Randoms(40, -720, 720));

    w.comment("raised-cosine step: the clamp ends, the exact half points, one ulp either side");
    Unary(w, "QZ_Sigmod",
          Join({Around(1.0), Around(-1.0), Around(0.5), Around(-0.5), {0.25, -0.25, 2.0, -7.0}}),
          Randoms(150, -1.5, 1.5));

    w.comment("arc tangent (libm atan2) over signed zeros, infinities and NaN; arc cosine clamp");
    Binary(w, "QZ_ATan2", {0.0, -0.0, 1.0, -1.0, kInf, -kInf, kNaN, 1e-300, -1e300}, 250, -10, 10);
    Unary(w, "QZ_ACOS", Join({Around(1.0), Around(-1.0), {1.5, -2.0, 0.5, -0.5, 1e-17}}),
          Join({Randoms(250, -1, 1), AnyBitsN(10)}));

    w.comment("fmax and fmin: NaN is passed over, signed zeros");
    for (const char *fn : {"QZ_MAX", "QZ_MIN"})
        Binary(w, fn, {0.0, -0.0, 1.0, -1.0, kInf, -kInf, kNaN}, 40, -5, 5);

    w.comment("zero bands: both ends included, one ulp beyond excluded");
    Unary(w, "QZ_IsZero", Join({Around(1e-16), Around(-1e-16), {1e-15, -1e-300}}), {});
    Unary(w, "QZ_IsZeroL", Join({Around(1e-15), Around(-1e-15), {2e-15, 1e-16}}), {});

    w.comment("floor: halves, whole numbers, the 32-bit integer range and beyond, signed zero");
    Unary(w, "QZ_Floor",
          Join({{2.5, -2.5, -3.0, 3.0, 0.5, -0.5, 0.99999999999999989, -1e-300},
                Around(1.0),
                Around(-1.0),
                Around(2147483648.0),
                Around(-2147483648.0),
                Around(2147483647.0),
                Around(4503599627370496.0),
                Around(-4503599627370496.0),
                {9007199254740993.0, 1e300}}),
          Join({Randoms(100, -1e10, 1e10), Randoms(50, -3, 3), AnyBitsN(30)}));
    Unary(w, "QZ_Value_Sig", {-1e-300, 1e-300, 5.0, -5.0}, AnyBitsN(10));
}

// Coefficients with integer roots r1..rn, so that exact and nearly exact roots both occur.
Doubles FromRoots(const Doubles &r) {
    Doubles c = {1.0};
    for (double root : r) {
        Doubles n(c.size() + 1, 0.0);
        for (size_t k = 0; k < c.size(); ++k) {
            n[k] += c[k];
            n[k + 1] -= c[k] * root;
        }
        c = n;
    }
    return c;
}

double SmallInt() { return std::floor(Uniform(-6, 7)); }

void Polynomials(Writer &w) {
    w.comment("quadratic: the degenerate linear and constant cases, the discriminant band");
    std::vector<Doubles> quad = {
        {1, -3, 2},      {-1, 3, -2},       {1, 2, 1},         {1, 0, 1},
        {0, 2, -4},      {0, 0, 5},         {1e-15, 2, -4},    {Up(1e-15), 2, -4},
        {-1e-15, 2, -4}, {0, 1e-15, 1},     {0, Up(1e-15), 1}, {1, 2, 1 - 2.5e-16},
        {1, 2, Up(1.0)}, {1, 2, Down(1.0)}, {1, 0, -2.5e-16},  {1, 0, -Up(2.5e-16)},
        {kNaN, 1, 1},    {1, kInf, 1},      {-0.0, -0.0, -0.0}};
    for (const Doubles &c : quad) w.pure("QZ_SqureSolve", "edge", c);
    for (int k = 0; k < 150; ++k) {
        Doubles c = FromRoots({SmallInt(), SmallInt()});
        w.pure("QZ_SqureSolve", "int-roots", c);
        w.pure("QZ_SqureSolve", "ordinary", {Uniform(-5, 5), Uniform(-5, 5), Uniform(-5, 5)});
    }

    w.comment("cubics: each branch of Cardano, the degenerate leading coefficients, zero constant");
    std::vector<Doubles> cubic = {
        {1, -6, 11, -6},    {1, 0, 0, -8},          {1, -3, 2, 0},     {1e-12, 1, -3, 2},
        {1, 0, -1, 0},      {1, -3, 3, -1},         {1, 0, 0, 0},      {1, -4, 5, -2},
        {1, -5, 8, -4},     {2, 0, -6, 4},          {1e-15, 1, -3, 2}, {Up(1e-15), 1, -3, 2},
        {1, 1e10, 1, 1},    {1, Up(1e10), 1, 1},    {1, -1e10, 1, 1},  {1, -Up(1e10), 1, 1},
        {1, -6, 11, 1e-15}, {1, -6, 11, Up(1e-15)}, {0, 0, 0, 1},      {0, 1, 0, 1},
        {-1, 6, -11, 6},    {1, 0, 3, -4},          {kNaN, 1, 1, 1},   {1, kInf, 0, 1},
        {1, 0, 0, -0.0},    {-0.0, 1, -3, 2}};
    std::vector<Doubles> cubicRandom;
    for (int k = 0; k < 120; ++k) {
        cubicRandom.push_back(FromRoots({SmallInt(), SmallInt(), SmallInt()}));
        cubicRandom.push_back({Uniform(-5, 5), Uniform(-5, 5), Uniform(-5, 5), Uniform(-5, 5)});
    }
    for (const char *fn :
         {"QZ_CubicSolve", "QZ_CubicSolve_Min_Pos", "QZ_CubicSolve_Max_Nag", "QZ_Solve3OrderEq"}) {
        for (const Doubles &c : cubic) w.pure(fn, "edge", c);
        for (const Doubles &c : cubicRandom) w.pure(fn, "ordinary", c);
    }

    w.comment("complex quadratic: real pairs, zero and negative discriminants, a == 0");
    std::vector<Doubles> quadc = {
        {1, 0, 1}, {1, -2, 1},     {1, -3, 2},        {-1, 3, -2},   {0, 2, -4},
        {0, 0, 1}, {0, 1e-15, 1},  {0, Up(1e-15), 1}, {1e-15, 1, 1}, {Up(1e-15), 1, 1},
        {2, 0, 0}, {1, -0.0, 0.0}, {kNaN, 0, 1}};
    for (const Doubles &c : quadc) w.pure("QZ_Solve2OrderEq", "edge", c);
    for (int k = 0; k < 150; ++k)
        w.pure("QZ_Solve2OrderEq", "ordinary", {Uniform(-5, 5), Uniform(-5, 5), Uniform(-5, 5)});

    w.comment("quartics by Ferrari: four real, pairs, the zero resolvent constant, a == 0, e == 0");
    std::vector<Doubles> quart = {{1, -10, 35, -50, 24}, {1, 0, 0, 0, -1},   {2, 3, -4, 5, -6},
                                  {0, 1, -6, 11, -6},    {1, -6, 11, -6, 0}, {1, 0, 0, 0, 1},
                                  {1, 0, 2, 0, 1},       {1, -4, 6, -4, 1},  {1, 0, -5, 0, 4},
                                  {1e-300, 1, 1, 1, 1},  {1, 2, 3, 4, 5},    {kNaN, 1, 1, 1, 1},
                                  {1, 0, 0, 0, -0.0},    {-1, 0, 0, 0, 16}};
    std::vector<Doubles> quartRandom;
    for (int k = 0; k < 120; ++k) {
        quartRandom.push_back(FromRoots({SmallInt(), SmallInt(), SmallInt(), SmallInt()}));
        quartRandom.push_back(
            {Uniform(-5, 5), Uniform(-5, 5), Uniform(-5, 5), Uniform(-5, 5), Uniform(-5, 5)});
    }
    for (const char *fn : {"QZ_Solve4OrderEq", "QZ_Solve4OrderEqR"}) {
        for (const Doubles &c : quart) w.pure(fn, "edge", c);
        for (const Doubles &c : quartRandom) w.pure(fn, "ordinary", c);
    }

    w.comment("polynomial value: counts from -1 to 16, constant term first");
    Doubles p = {24, -50, 35, -10, 1};
    w.pure("QZ_SolvePolynomialResult", "quartic-root", Join({p, Doubles(11, 0.0), {2.0}}), {5});
    w.pure("QZ_SolvePolynomialResult", "1234", Join({{1, 2, 3, 4}, Doubles(12, 0.0), {2.0}}), {4});
    for (int n = -1; n <= 16; ++n) {
        Doubles c = Randoms(16, -3, 3);
        c.push_back(Uniform(-2, 2));
        w.pure("QZ_SolvePolynomialResult", "count", c, {n});
    }
    w.pure("QZ_SolvePolynomialResult", "negative-zero", Join({{-0.0}, Doubles(15, 0.0), {-0.0}}),
           {1});
    w.pure("QZ_SolvePolynomialResult", "nan-x", Join({{1, 1}, Doubles(14, 0.0), {kNaN}}), {2});
    w.pure("QZ_SolvePolynomialResult", "inf-x", Join({{1, 1, 1}, Doubles(13, 0.0), {-kInf}}), {3});
}

void Geometry(Writer &w) {
    w.comment("triangle angle: straight, folded, impossible sides, degenerate sides");
    std::vector<Doubles> tri = {
        {1, 1, 1},      {3, 4, 5},          {1, 1, 2},       {1, 1, 0},
        {1, 1, 3},      {0, 1, 1},          {1e-16, 1, 1},   {Up(1e-16), 1, 1},
        {1, -1e-16, 1}, {1, -Up(1e-16), 1}, {1, 1, Up(2.0)}, {1, 1, Down(2.0)},
        {-1, 1, 1},     {kNaN, 1, 1},       {1, 1, kNaN},    {1, 1, kInf}};
    for (const Doubles &t : tri) w.pure("QZ_CalAngleCDEG", "edge", t);
    for (int k = 0; k < 150; ++k)
        w.pure("QZ_CalAngleCDEG", "ordinary", {Uniform(0, 10), Uniform(0, 10), Uniform(0, 20)});

    w.comment("foot of the perpendicular, including A == B and outputs over an input");
    w.pure("QZ_PointToLine", "axis", {0, 0, 0, 1, 0, 0, 2, 3, 4});
    w.pure("QZ_PointToLine", "A==B", {1, 2, 3, 1, 2, 3, 4, 5, 6});
    w.pure("QZ_PointToLine", "P-on-line", {0, 0, 0, 1, 1, 1, 2, 2, 2});
    w.pure("QZ_PointToLine", "signed-zero", {-0.0, -0.0, -0.0, 0, 0, -1, -0.0, 1, -0.0});
    for (int k = 0; k < 100; ++k) w.pure("QZ_PointToLine", "ordinary", Randoms(9, -10, 10));
    for (int k = 0; k < 30; ++k) {
        w.pure("QZ_PointToLine.FisA", "ordinary", Randoms(6, -10, 10), {}, Randoms(3, -10, 10));
        w.pure("QZ_PointToLine.FisP", "ordinary", Randoms(6, -10, 10), {}, Randoms(3, -10, 10));
    }

    w.comment("shortest angular distance: the 180 tie, many turns, the 2^62 bound, non-finite");
    const double two62 = 4611686018427387904.0;
    std::vector<Doubles> circ = {
        {10, 350},      {170, -170},     {0, 180},         {180, 0},          {45, 45},
        {0, -180},      {0, Up(180.0)},  {0, Down(180.0)}, {0, Down(-180.0)}, {0, 1e10},
        {0, -1e10},     {0, 1e15 + 0.5}, {0, two62},       {0, Up(two62)},    {0, Down(two62)},
        {0, -two62},    {0, -Up(two62)}, {0, kInf},        {kInf, 0},         {kInf, kInf},
        {kNaN, 0},      {0, kNaN},       {-0.0, 0.0},      {0.0, -0.0},       {-0.0, 360},
        {1e300, -1e300}};
    for (const Doubles &c : circ) w.pure("QZ_MinDif_Circle", "edge", {c[0]}, {}, {c[1]});
    for (int k = 0; k < 150; ++k)
        w.pure("QZ_MinDif_Circle", "ordinary", {Uniform(-720, 720)}, {}, {Uniform(-5000, 5000)});

    w.comment("one step towards a target: the half-step band edges and overshoot");
    std::vector<Doubles> vt = {{10, 0, 1},   {0.5, 0, 1},     {-0.5, 0, 1},       {0.7, 0, 1},
                               {1.6, 0, 1},  {Up(0.5), 0, 1}, {Down(-0.5), 0, 1}, {0, 0, 1},
                               {-0.0, 0, 1}, {5, 5, 0},       {5, 4, 0},          {1, 0, -1},
                               {kNaN, 0, 1}, {1, kNaN, 1},    {1, 0, kNaN},       {kInf, 0, 1}};
    for (const Doubles &c : vt) w.pure("ValueToTarget", "edge", {c[1], c[2]}, {}, {c[0]});
    for (int k = 0; k < 100; ++k)
        w.pure("ValueToTarget", "ordinary", {Uniform(-5, 5), Uniform(0, 2)}, {}, {Uniform(-5, 5)});
}

Register scalar("QZBaseMath_scalar", Scalars);
Register polynomial("QZBaseMath_polynomial", Polynomials);
Register geometry("QZBaseMath_geometry", Geometry);

}  // namespace
}  // namespace qzgen
