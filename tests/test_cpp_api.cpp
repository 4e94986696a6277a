// The C++ interface: every wrapper hands back the bits of the C function it stands for, each
// failure comes back under its own reason, and the classes step their records as the C calls do.
#include <qzmath/eigen.hpp>
#include <qzmath/qzmath.hpp>

#include <cstring>
#include <type_traits>
#include <utility>

#include "test_util.h"

namespace {

std::mt19937_64 rng = qztest::Rng();

template <class T>
T Random(double lo = -1.0, double hi = 1.0) {
    T v{};
    for (double &x : v) x = qztest::Uniform(rng, lo, hi);
    return v;
}
// A symmetric positive definite N x N matrix: B B^T + N I.
template <std::size_t N>
qz::Mat<N, N> Spd() {
    const auto b = Random<qz::Mat<N, N>>();
    auto a = qz::mul(b, qz::transpose(b));
    for (std::size_t i = 0; i < N; ++i) a(i, i) += N;
    return a;
}

// Every element of the value against the C function's output, bit for bit.
template <class T, class C>
::testing::AssertionResult Same(const T &value, const C &c) {
    for (std::size_t i = 0; i < value.size(); ++i)
        if (qztest::Bits(value[i]) != qztest::Bits(c[i]))
            return ::testing::AssertionFailure()
                   << "element " << i << ": " << qztest::SameBits(value[i], c[i]).message();
    return ::testing::AssertionSuccess();
}
template <class T>
auto Arg(const T &v) {
    if constexpr (std::is_scalar_v<T>)
        return v;
    else
        return v.data();
}
// The output of a C function called with the storage of the given values (scalars and pointers
// as they are), the output last.
template <class F, class... A>
std::array<double, 64> C(F fn, const A &...args) {
    std::array<double, 64> out{};
    fn(Arg(args)..., out.data());
    return out;
}

// The size families, one column per family, indexed by size: the test's own table, so that a
// wrong entry in the header's table shows.
#define QZ_SIZES(f) \
    { nullptr, nullptr, f##2, f##3, f##4, f##5, f##6, f##7, f##8 }
using Bin = void (*)(const double *, const double *, double *);
constexpr Bin kMult[] = QZ_SIZES(QZ_MatrixMult), kMatAdd[] = QZ_SIZES(QZ_MatrixAdd),
              kVecAdd[] = QZ_SIZES(QZ_VectAdd);
constexpr void (*kTranspose[])(const double *, double *) = QZ_SIZES(QZ_MatrixTranspose);
constexpr std::uint8_t (*kInv[])(const double *, double *) = QZ_SIZES(QZ_MatrixInv);
constexpr std::int32_t (*kNorm[])(double *) = QZ_SIZES(QZ_VectNorm);
constexpr void (*kSA[])(const double *, double, const double *, double *) = QZ_SIZES(QZ_VectSA);

template <std::size_t N>
void SquareSize() {
    SCOPED_TRACE(N);
    const auto a = Random<qz::Mat<N, N>>(), b = Random<qz::Mat<N, N>>();
    const auto u = Random<qz::Vec<N>>(), v = Random<qz::Vec<N>>();
    EXPECT_TRUE(Same(qz::mul(a, b), C(kMult[N], a, b)));
    EXPECT_TRUE(Same(qz::add(a, b), C(kMatAdd[N], a, b)));
    EXPECT_TRUE(Same(qz::transpose(a), C(kTranspose[N], a)));
    EXPECT_TRUE(Same(qz::inverse(a).value(), C(kInv[N], a)));
    EXPECT_TRUE(Same(qz::add(u, v), C(kVecAdd[N], u, v)));
    EXPECT_TRUE(Same(qz::axpy(u, 0.3, v), C(kSA[N], u, 0.3, v)));
    auto w = u;
    kNorm[N](w.data());
    EXPECT_TRUE(Same(qz::normalize(u).value(), w));
    qz::Mat<8, 8> storage{};
    for (std::size_t i = 0; i < N * N; ++i) storage(i / N, i % N) = a[i];
    EXPECT_TRUE(qztest::SameBits(qz::det(a), QZ_MatrixDeterminant(storage.data(), N)));
}

template <std::size_t... N>
void EverySize(std::index_sequence<N...>) {
    (SquareSize<N + 2>(), ...);
}

TEST(CppApi, SizeFamiliesCallTheFunctionOfTheirSize) { EverySize(std::make_index_sequence<7>()); }

TEST(CppApi, ShapesAndDecompositionsGiveTheBitsOfTheirCFunctions) {
    const auto j67 = Random<qz::Mat67>();
    const auto j76 = qz::transpose(j67);
    const auto m7 = Random<qz::Mat<7, 7>>(), s7 = Spd<7>(), b7 = Spd<7>();
    const auto m6 = Random<qz::Mat6>(), s6 = Spd<6>();
    const auto v6 = Random<qz::Vec<6>>();
    const auto v7 = Random<qz::Vec<7>>(), w7 = Random<qz::Vec<7>>();
    const auto r = Random<qz::Mat3>();  // the Jacobian transforms only multiply by it
    EXPECT_TRUE(Same(qz::mul(j67, m7), C(QZ_MatrixMult6777, j67, m7)));
    EXPECT_TRUE(Same(qz::mul(j67, j76), C(QZ_MatrixMult6776, j67, j76)));
    EXPECT_TRUE(Same(qz::mul(j67, v7), C(QZ_Matrix67MultVect7, j67, v7)));
    EXPECT_TRUE(Same(qz::mul(j76, v6), C(QZ_Matrix76MultVect6, j76, v6)));
    EXPECT_TRUE(Same(qz::mul(m6, v6), C(QZ_MatrixMultVect6, m6, v6)));
    EXPECT_TRUE(Same(qz::sub(v7, w7), C(QZ_VectSub, v7, 7, w7)));
    EXPECT_TRUE(Same(qz::scale(v7, 0.3), C(QZ_VectScale, v7, 7, 0.3)));
    EXPECT_TRUE(qztest::SameBits(qz::dot(v7, w7), QZ_VectDot(v7.data(), w7.data(), 7)));
    EXPECT_TRUE(Same(qz::mul(v7, m7), C(QZ_VMmult1777, v7, m7)));
    EXPECT_TRUE(Same(j76, C(QZ_Mat67Transpose, j67)));
    EXPECT_TRUE(Same(qz::pinv(j67).value(), C(QZ_RightPsoInv67, j67)));
    EXPECT_TRUE(Same(qz::pinv(j76).value(), C(QZ_LeftPsoInv76, j76)));
    EXPECT_TRUE(Same(qz::jacobian_rotate(j67, r), C(QZ_JACOB_TRAN_T67, j67, r)));
    EXPECT_TRUE(Same(qz::jacobian_rotate(m6, r), C(QZ_JACOB_TRAN_T66, m6, r)));
    EXPECT_TRUE(Same(qz::mul_diag(m6, v6), C(QZ_MmultDiagM66, m6, v6)));
    EXPECT_TRUE(Same(qz::sub(j67, qz::mul(j67, m7)), C(QZ_MatrixSub67, j67, qz::mul(j67, m7))));
    EXPECT_TRUE(qztest::SameBits(qz::vmv(v7, s7), VMV(v7.data(), s7.data(), 7)));

    // LUP, and what its factors give.
    auto lu = m7, inv = m7;
    double *rows[7], *invRows[7];
    for (int i = 0; i < 7; ++i) rows[i] = lu.data() + 7 * i, invRows[i] = inv.data() + 7 * i;
    std::array<std::int32_t, 8> perm;
    ASSERT_EQ(QZ_MatLUPD(rows, 7, 7, perm.data()), 0);
    const auto f = qz::lup(m7);
    EXPECT_ALL(Same(f->lu, lu), perm == f->perm);
    EXPECT_TRUE(Same(qz::solve(*f, v7), C(QZ_LUPSolveEq, &rows[0], 7, perm.data(), v7)));
    EXPECT_TRUE(qztest::SameBits(qz::det(*f), QZ_MatLUPDet(rows, 7, perm.data())));
    QZ_MatLUPInv(rows, 7, perm.data(), invRows);
    EXPECT_TRUE(Same(qz::inverse(*f), inv));

    // Cholesky in its two storages (the 3x3 in 6x6 storage), eig and the generalized problem.
    const auto s3 = Spd<3>(), l3 = qz::cholesky(s3).value();
    qz::Mat6 in6{}, l6{};
    for (int i = 0; i < 9; ++i) in6[6 * (i / 3) + i % 3] = s3[i], l6[6 * (i / 3) + i % 3] = l3[i];
    EXPECT_TRUE(Same(l6, C([&](double *l) { Cholesky(in6.data(), l, 3); })));
    EXPECT_TRUE(Same(qz::cholesky(s7).value(),
                     C([](const double *a, double *l) { Cholesky7(a, l, 7); }, s7)));
    auto a = s6;
    const auto vectors = C([&](double *v) { ASSERT_TRUE(eig(6, a.data(), v, 1e-12)); });
    const auto e = qz::eig(s6, 1e-12);
    ASSERT_TRUE(e.ok());
    EXPECT_TRUE(Same(e->vectors, vectors));
    for (int k = 0; k < 6; ++k) EXPECT_TRUE(qztest::SameBits(e->values[k], a(k, k)));
    double values[7];
    const auto gv = C(
        [&](double *v) { ASSERT_TRUE(generalized_eig7(1e-12, s7.data(), b7.data(), v, values)); });
    const auto g = qz::generalized_eig(s7, b7, 1e-12);
    EXPECT_ALL(Same(g->vectors, gv), Same(g->values, values));
}

TEST(CppApi, OrientationsAndPosesGiveTheBitsOfTheirCFunctions) {
    const auto p = qz::normalize(Random<qz::Quat>()).value(),
               q = qz::normalize(Random<qz::Quat>()).value();
    const auto abc = qz::EulerXYZ<qz::Deg>{{20.0, -35.0, 140.0}};
    const auto t = *qz::transform(qz::PoseXYZ<qz::Deg>{{100.0, -20.0, 300.0, 20.0, -35.0, 140.0}});
    const auto r = *qz::rotation(abc);
    const auto pq = *qz::to_posquat(t);
    const auto prad = *qz::pose_xyz<qz::Rad>(t);
    const auto rv = *qz::to_rotvec(r), rw = Random<qz::RotVec>();
    const auto rz = qz::rot_z(qz::Rad{0.4});
    EXPECT_TRUE(Same(qz::mul(p, q), C(QZ_QuatMult, p, q)));
    EXPECT_TRUE(Same(qz::conjugate(p), C(QZ_QuaternionConjugate, p)));
    EXPECT_TRUE(Same(qz::inverse(q).value(), C(QZ_QuaternionInverse, q)));
    EXPECT_TRUE(qztest::SameBits(qz::angle<qz::Deg>(p, q)->value,
                                 QZ_QuaternionAngleDeg(p.data(), q.data())));
    EXPECT_TRUE(qztest::SameBits(qz::angle<qz::Rad>(p, q)->value,
                                 QZ_QuaternionAngleArc(p.data(), q.data())));
    EXPECT_TRUE(Same(*qz::slerp_long(p, q, 0.3), C(QZ_QuatSlerpL, p, q, 0.3)));
    const qz::Vec3 axis{{0.2, -0.5, 0.8}};
    EXPECT_EQ(*qz::slerp_direction(p, q, axis), QZ_QuatSlerpDir(p.data(), q.data(), axis.data()));
    auto qc = q;  // the C slerps may negate their second quaternion in place
    QZSlerpFactorState st{};
    const auto factor =
        C([&](double *out) { QZ_QuatSlerpFactor(p.data(), qc.data(), 0.3, out, &st); });
    EXPECT_ALL(Same(*qz::Slerp(p, q).at(0.3), factor), Same(*qz::slerp(p, q, 0.3), factor));
    EXPECT_TRUE(Same(r, C(QZ_ABC2Matrix3DEG, abc)));
    EXPECT_TRUE(Same(*qz::to_quat(t), C(QZ_Matrix2Quaternion4, t)));
    EXPECT_TRUE(Same(*qz::rotation(p), C(QZ_Quaternion2Matrix3, p)));
    EXPECT_TRUE(Same(pq, C(QZ_Matrix2PosQuat, t)));
    EXPECT_TRUE(Same(*qz::transform(pq), C(QZ_PosQuat2Matrix, pq)));
    EXPECT_TRUE(Same(qz::rigid_inverse(t), C(QZ_PGMatrixInv, t)));
    // The unit is in the type: the C names of the XYZ extractions carry the opposite unit.
    EXPECT_TRUE(Same(*qz::pose_xyz<qz::Deg>(t), C(QZ_Matrix2XYZABC4ARC_XYZ, t)));
    EXPECT_TRUE(Same(prad, C(QZ_Matrix2XYZABC4DEG_XYZ, t)));
    EXPECT_TRUE(Same(*qz::transform(prad), C(QZ_XYZABC2Matrix4ARC, prad)));
    EXPECT_TRUE(Same(qz::pose_zyz<qz::Deg>(t).value(), C(QZ_Matrix2XYZABC4DEG_ZYZ, t)));
    // The singular branch keeps the angles it wrote.
    EXPECT_TRUE(Same(qz::euler_zyz(rz).value(), C(QZ_Matrix2ZYZ, rz)));
    EXPECT_TRUE(Same(*qz::euler_xyz(r), C(QZ_Matrix2XYZ, r)));
    EXPECT_TRUE(Same(qz::dh(qz::Rad{0.5}, 82.5, 316.0, qz::Rad{-1.2}),
                     C(QZ_DH2Matrix, 0.5, 82.5, 316.0, -1.2)));
    EXPECT_TRUE(qztest::SameBits(qz::sin(qz::to_rad(qz::Deg{35.0})), QZ_SIN_DEG(35.0)));
    EXPECT_TRUE(qztest::SameBits(qz::sin(qz::Deg{35.0}), QZ_SIN_DEG(35.0)));
    EXPECT_TRUE(Same(*qz::compose(rv, rw), C(AngleMult, rv, rw)));
    EXPECT_TRUE(Same(*qz::relative(rv, rw), C(relative_Angle, rv, rw)));
    EXPECT_TRUE(Same(*qz::rotation(rw), C(axis_angle_to_rotmat, rw)));
}

TEST(CppApi, FailuresComeBackUnderTheirOwnReason) {
    const qz::Mat3 singular{{1, 2, 3, 2, 4, 6, 0, 1, 1}}, indefinite{{1, 0, 0, 0, -1, 0, 0, 0, 1}};
    using S = qz::Status;
    // clang-format off
    const std::pair<S, S> cases[] = {
        {qz::inverse(singular).status(), S::singular},
        {qz::lup(singular).status(), S::singular},
        {qz::pinv(qz::Mat67{}).status(), S::singular},
        {qz::cholesky(indefinite).status(), S::not_positive_definite},
        {qz::euler_zyz(qz::rot_z(qz::Rad{0.4})).status(), S::zyz_singular},
        {qz::pose_zyz<qz::Rad>(qz::identity<4>()).status(), S::zyz_singular},
        {qz::line_cross({}, {{1, 0, 0}}, {{1, 0, 0}}, {{1, 0, 0}}).status(), S::parallel},
        {qz::eig(indefinite, 0.0).status(), S::failed},
        {qz::inverse(indefinite).status(), S::ok},
    };
    // clang-format on
    for (std::size_t i = 0; i < std::size(cases); ++i)
        EXPECT_EQ(cases[i].first, cases[i].second) << "row " << i;
}

TEST(CppApi, LimitSettersReportWhatTheTrackerDid) {
    using L = qz::Limit;
    qz::Tracker axis(4.0, 300.0, 100.0);
    EXPECT_EQ(axis.init_limits(), L::clamped);  // 300 is above the velocity ceiling of 200
    EXPECT_EQ(qz::Tracker(4.0, 50.0, 100.0).init_limits(), L::applied);
    (void)axis.step(0.0);
    for (int k = 0; k < 600; ++k) (void)axis.step(1000.0);  // cruising at 200
    qz::SmoothedTracker<2> refused(4.0, {{50, 50}}, {{100, 100}}, {{1000, 0.5}}),
        pair(4.0, {{50, 0.01}}, {{100, 100}}, {{1000, 1000}});
    EXPECT_EQ(refused.status(), qz::Status::bad_argument);  // a jerk limit below 1
    EXPECT_EQ(refused.step({{1, 1}}).status(), qz::Status::not_initialised);
    const auto report = pair.set_velocity_limits({{50.05, 20}});
    // clang-format off
    const std::pair<L, L> cases[] = {
        {axis.set_velocity_limit(200.05), L::ignored},  // within 0.1 of the last request
        {axis.set_velocity_limit(100.0), L::ramping},   // below the current speed
        {axis.set_velocity_limit(250.0), L::applied},   // above the active limit: at once
        {axis.set_acceleration_limit(100.05), L::ignored},
        {axis.set_limits(250.0, 100.5), L::applied},  // the acceleration differs by 0.5
        {axis.set_limits(250.02, 100.52), L::ignored},
        {refused.init_limits()[1], L::refused},
        {pair.init_limits()[1], L::clamped},
        {report[0], L::ignored},  // within 0.1 of its request
        {report[1], L::applied},
    };
    // clang-format on
    for (std::size_t i = 0; i < std::size(cases); ++i)
        EXPECT_EQ(cases[i].first, cases[i].second) << "row " << i;
}

// A record initialised by the C function, as the classes initialise theirs.
template <class S, class F, class... A>
S Init(F fn, const A &...args) {
    S s{};
    fn(&s, Arg(args)...);
    return s;
}

// Runs each class and a bare record side by side through the same cycles.
TEST(CppApi, StatefulClassesStepTheirRecordsAsTheCFunctionsDo) {
    const qz::Vec<3> vel{{50, 80, 120}}, acc{{100, 300, 400}}, jerk{{2000, 3000, 5000}};
    qz::Tracker one(4.0, 50.0, 100.0);
    qz::MultiStageTracker stages(4.0, 50.0, 100.0, 2);
    qz::SmoothedTracker<3> arm(4.0, vel, acc, jerk);
    qz::SmoothedMultiStageTracker<3> armM(4.0, vel, acc, jerk, 0);
    qz::Estimator<3> est(4.0, vel, vel);
    qz::OneStepFitter<3> fitter(qz::Vec<3>{{0.1, 0.5, 1.0}});
    qz::ErrorComparator cmp;
    qz::AveragingFilter<3> avg(10, 0.004);
    qz::SmoothedValue smv(0.0, 0.05, 0.01, 0.002);
    auto c1 = Init<QZVDTState>(QZVDT_OnInit, 4.0, 50.0, 100.0);
    auto cStages = Init<QZVDTMState>(QZVDT_OnInitM, 4.0, 50.0, 100.0, 2);
    cStages.mode = 2;
    auto cArm = Init<QZNSyncDTSState>(QZNSyncDTS_OnInit, 3, 4.0, vel, acc, jerk);
    // The initialiser clamps the jerk limits in place: it gets a copy.
    auto cArmM =
        Init<QZNSyncDTSMState>(QZNSyncDTS_OnInitM, 3, 4.0, vel, acc, qz::Vec<3>(jerk).data(), 0);
    auto cEst = Init<QZNEstState>(QZOnInitEst, 3, 4.0, vel, vel);
    auto cFit = Init<OneFitterState>(OneFitterInit, 3, qz::Vec<3>{{0.1, 0.5, 1.0}});
    auto cCmp =
        Init<QZDCTRLErrorState>([](QZDCTRLErrorState *s) { QZ_DCTRL_ErrorCompare_Init(0, s); });
    auto cAvg = Init<QZAVGFState>(QZAVGF_OnInit, 3, 10, 0.004);
    auto cSmv = Init<QZSMVState>(QZSMV_OnInit, 0.0, 0.05, 0.01, 0.002);
    const qz::Vec<7> z7{}, g{{0.04, 0.03, 0.02, 0.01, 0.05, 0.06, 0.07}},
        h{{0.5, 0.7, 1, 2, 3, 4, 5}};
    ASSERT_ALL(cmp.set_gains(g, h) == qz::Status::ok, cmp.set_limits(h, g, h) == qz::Status::ok);
    for (int j = 0; j < 7; ++j)  // the same gains and limits, field by field
        cCmp.kInteg[j] = cCmp.errLmt[j] = g[j],
        cCmp.kProp[j] = cCmp.outLmt[j] = cCmp.integLmt[j] = h[j];
    double a[3], d[3];
    for (int k = 0; k < 400; ++k) {
        const double goal = k < 200 ? 10.0 : -4.0;
        const qz::Vec<3> target{{goal, 2 * goal, -goal}};
        const qz::Vec<7> e7{{goal / 5, 0.1, 3, -3}};
        const double g = goal / 10;
        ASSERT_TRUE(qztest::SameBits(*one.step(goal), C(QZVDT_OnDT, &c1, goal)[0])) << k;
        ASSERT_TRUE(qztest::SameBits(*stages.step(goal), C(QZVDT_OnDT_BM, &cStages, goal)[0])) << k;
        ASSERT_TRUE(Same(arm.step(target).value(), C(QZNSyncDTS_OnDT, &cArm, target))) << k;
        ASSERT_TRUE(Same(*armM.step(target), C(QZNSyncDTS_OnDTM, &cArmM, target))) << k;
        const auto e =
            C([&](double *out) { QZNEst_OnDT(&cEst, k / 4, target.data(), out, vel.data()); });
        ASSERT_TRUE(Same(*est.step(k / 4, target, vel), e)) << k;
        ASSERT_TRUE(Same(*fitter.update(target), C(OneFitterRun, &cFit, target))) << k;
        ASSERT_TRUE(Same(*cmp.update(z7, e7), C(QZ_DCTRL_ErrorCompare, 0, z7, e7, &cCmp))) << k;
        QZAVGF_OnFilt(&cAvg, target.data(), a, d);
        const auto av = avg.update(target).value();
        ASSERT_ALL(Same(av.avg, a), Same(av.rate, d)) << k;
        ASSERT_TRUE(qztest::SameBits(*smv.update(g), C(QZSMV_OnUpdateV, &cSmv, g)[0])) << k;
    }
}

// The trackers' common operations: a step towards the last target is the step that target would
// give again, reset_to leaves the axis at rest where it puts it, and after jump_to_next_target
// the step outputs its target.
template <class T, class P>
void CommonOperations(T tracker, const P &at, const P &target) {
    const auto bits = [](const P &a, const P &b) { return std::memcmp(&a, &b, sizeof(P)) == 0; };
    EXPECT_EQ(tracker.step_to_last_target().status(), qz::Status::reset_pending);
    ASSERT_EQ(tracker.reset_to(at), qz::Status::ok);
    T rest = tracker;
    const P still = *rest.step(at), first = *tracker.step(target);
    for (int k = 0; k < 20; ++k) (void)tracker.step(target);  // moving
    T again = tracker;
    const auto held = tracker.step_to_last_target();
    const P fed = *again.step(target);
    EXPECT_ALL(bits(still, at), !bits(first, target), held.ok(), bits(held.value(), fed),
               !bits(fed, target));
    ASSERT_EQ(tracker.jump_to_next_target(), qz::Status::ok);
    EXPECT_TRUE(bits(*tracker.step(at), at));
}

TEST(CppApi, TrackersShareTheirOperationsAndTheirMeaning) {
    const qz::Vec<2> at{{0.25, -1.0}}, to{{3.0, 2.0}}, vel{{50, 80}}, acc{{100, 300}};
    CommonOperations(qz::Tracker(4.0, 50.0, 100.0), 0.25, 3.0);
    CommonOperations(qz::MultiStageTracker(4.0, 50.0, 100.0, 2), 0.25, 3.0);
    CommonOperations(qz::SmoothedTracker<2>(4.0, vel, acc, {{2000, 3000}}), at, to);
    CommonOperations(qz::SmoothedMultiStageTracker<2>(4.0, vel, acc, {{2000, 3000}}, 2), at, to);
}

TEST(CppApi, EigenViewsShareTheStorage) {
    auto j = Random<qz::Mat67>();
    const auto q = qz::normalize(Random<qz::Quat>()).value();
    auto view = qz::eigen::map(j);
    EXPECT_EQ(&view(2, 5), &j(2, 5));
    EXPECT_EQ(&qz::eigen::as_qz(view), &j);
    Eigen::Matrix<double, 6, 7, Eigen::RowMajor> m = view;
    EXPECT_EQ(qz::eigen::as_qz(m).data(), m.data());
    // Eigen keeps quaternions as x, y, z, w as well: the same rotation, to rounding.
    EXPECT_TRUE(
        qz::eigen::map(q).toRotationMatrix().isApprox(qz::eigen::map(*qz::rotation(q)), 1e-15));
}

}  // namespace
