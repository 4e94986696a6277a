// The C++ interface under hostile input: NaN, infinities, zero, negative and huge values reach
// every family, and each comes back under a status that names it, never as a plausible finite
// answer, and no record is left producing NaN.
#include <qzmath/qzmath.hpp>

#include <cmath>
#include <cstring>
#include <limits>
#include <type_traits>

#include "test_util.h"

namespace {

using S = qz::Status;
using L = qz::Limit;
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInf = std::numeric_limits<double>::infinity();
constexpr double kNonFinite[] = {kNaN, kInf, -kInf};
const qz::Quat kUnit{{0, 0, 0, 1}};

// A temporary's value is handed out by value: a reference to it cannot dangle.
static_assert(!std::is_reference_v<decltype(qz::inverse(qz::Mat3{}).value())>);

TEST(CppHostile, ConversionsAndDecompositionsNameNonFiniteAndNonRotationInput) {
    using namespace qz;
    for (double bad : kNonFinite) {
        auto m7 = qz::identity<7>();
        qz::Mat4 pose = qz::identity<4>(), turned = pose;
        m7(3, 2) = bad, pose(1, 3) = bad, turned(2, 0) = bad;
        const qz::Mat3 r{{1, 0, 0, 0, 1, bad, 0, 0, 1}};
        const qz::Quat q{{0, bad, 0, 1}};
        const qz::Vec3 v{{1, bad, 0}}, x{{1, 0, 0}};
        // clang-format off
        const Status got[] = {
            inverse(m7).status(), lup(m7).status(), cholesky(m7).status(), eig(m7, 1e-12).status(),
            generalized_eig(m7, identity<7>(), 1e-12).status(), eig(identity<7>(), bad).status(),
            pinv(Mat67{{bad}}).status(), to_quat(r).status(), to_quat(turned).status(),
            euler_xyz(r).status(), euler_xyz(turned).status(), euler_zyz(r).status(),
            to_rotvec(r).status(), to_posquat(pose).status(), pose_xyz<Deg>(pose).status(),
            pose_zyz<Rad>(pose).status(), rotation(q).status(), rotation4(q).status(),
            transform(PosQuat{{bad, 0, 0, 0, 0, 0, 1}}).status(), inverse(q).status(),
            normalize(q).status(), angle<Deg>(kUnit, q).status(), slerp(kUnit, q, 0.5).status(),
            slerp_long(kUnit, kUnit, bad).status(), Slerp(q, kUnit).at(0.5).status(),
            rotation(RotVec{{bad, 0, 0}}).status(), compose(RotVec{{0, bad, 0}}, {}).status(),
            relative({}, RotVec{{bad}}).status(), rotation(EulerXYZ<Deg>{{bad}}).status(),
            rotation(EulerZYZ{{bad}}).status(), transform(PoseXYZ<Deg>{{0, 0, 0, bad}}).status(),
            to_posquat(PoseXYZ<Deg>{{bad}}).status(), normalize(v).status(), angle(v, x).status(),
            line_cross(x, v, {}, x).status(),
            slerp_direction(kUnit, q, x).status(), slerp_direction(kUnit, kUnit, v).status()};
        // clang-format on
        for (std::size_t i = 0; i < std::size(got); ++i)
            EXPECT_EQ(got[i], S::non_finite) << bad << " row " << i << ": " << to_string(got[i]);
    }
    // A quaternion of length 1e-9 or less has no direction to turn about; 1e-8 has one.
    const qz::Quat zero{}, tiny{{1e-10, 0, 0, 0}};
    // clang-format off
    const Status got[] = {
        rotation(zero).status(), rotation4(tiny).status(), transform(PosQuat{}).status(),
        angle<Rad>(kUnit, zero).status(), slerp(zero, kUnit, 0.5).status(),
        slerp_long(kUnit, tiny, 0.5).status(), Slerp(zero, kUnit).at(0.3).status(),
        inverse(zero).status(), normalize(zero).status(), angle(Vec3{}, Vec3{{1, 0, 0}}).status(),
        slerp_direction(zero, kUnit, Vec3{{0, 0, 1}}).status()};
    // clang-format on
    for (std::size_t i = 0; i < std::size(got); ++i) EXPECT_EQ(got[i], S::zero_length) << i;
    // Beyond that a quaternion has a direction, but only near unit length is it a rotation, and
    // only an orthonormal right-handed matrix is one.
    // clang-format off
    const Status rot[] = {
        rotation(Quat{{0, 0, 1e-8, 0}}).status(), angle<Deg>(kUnit, Quat{{0, 0, 0, 2}}).status(),
        to_quat(Mat3{}).status(), euler_xyz(Mat3{{2, 0, 0, 0, 2, 0, 0, 0, 2}}).status(),
        to_rotvec(Mat3{{1, 0, 0, 0, 1, 0, 0, 0, -1}}).status(), pose_xyz<Rad>(Mat4{}).status(),
        euler_zyz(Mat4{}).status()};
    // clang-format on
    for (std::size_t i = 0; i < std::size(rot); ++i) EXPECT_EQ(rot[i], S::not_a_rotation) << i;
    EXPECT_ALL(rotation(Quat{{0, 0, 6e-4, 1}}).ok(),
               to_quat(Mat3{{1, 0, 0, 0, 1, 4e-4, 0, 0, 1}}).ok());
    // Huge but finite: the direction is still there, though the squared length overflows.
    const double h = 1e300, r2 = 0.7071067811865476;
    EXPECT_ALL(std::abs(normalize(Vec3{{h, h, 0}})->at(1) - r2) < 1e-15,
               std::abs(normalize(Vec3{{1e154, 1e154, 0}})->at(1) - r2) < 1e-15,
               std::abs(inverse(Quat{{0, 0, h, h}})->at(3) - r2) < 1e-15,
               std::abs(angle(Vec3{{h, 0, 0}}, Vec3{{h, h, 0}})->value - 45) < 1e-12);
    // A rotation vector that long has no angle left to turn by: its matrix would be NaN, as
    // would the slerp the longer way at such a t.
    const Quat eighth{{0, 0, 0.38268343236508978, 0.92387953251128674}};
    for (const auto &huge : {RotVec{{h, 0, 0}}, RotVec{{0, -1e308, 0}}})
        EXPECT_ALL(rotation(huge).status() == S::non_finite,
                   compose(huge, {}).status() == S::non_finite,
                   relative({}, huge).status() == S::non_finite);
    EXPECT_EQ(slerp_long(kUnit, eighth, -1e308).status(), S::non_finite);
    // The ZYZ pose of a turn about z alone keeps its unit and position on the singular branch.
    const qz::Mat4 t = *qz::transform(qz::PoseXYZ<qz::Rad>{{1, 2, 3, 0, 0, 0.5}});
    const auto deg = qz::pose_zyz<qz::Deg>(t);
    const auto rad = qz::pose_zyz<qz::Rad>(t);
    ASSERT_ALL(deg.status() == S::zyz_singular, rad.status() == S::zyz_singular);
    for (std::size_t i = 0; i < 6; ++i)
        EXPECT_EQ(deg.value()[i], i < 3 ? 1.0 + i : qz::to_deg(qz::Rad{rad.value()[i]}).value) << i;
}

TEST(CppHostile, UnusableLimitsCycleTimesAndSamplesAreRefusedByName) {
    for (double bad : {kNaN, kInf, -kInf, 0.0, -1.0}) {
        qz::Tracker axis(4, 2, 10);
        qz::MultiStageTracker stages(4, 2, 10, 2);
        qz::SmoothedTracker<2> arm(4, {{2, 2}}, {{10, 10}}, {{1000, 1000}}),
            refused(4, {{2, bad}}, {{10, 10}}, {{1000, 1000}});
        (void)axis.step(0), (void)stages.step(0), (void)arm.step({});
        const auto before = axis.record();
        const auto report = arm.set_limits({{2, 2}}, {{3, bad}});
        // A braced list runs in order: each setter meets the record the one before left.
        using T = qz::Tracker;
        // clang-format off
        const bool checks[] = {
            T(bad, 2, 10).status() == S::bad_argument, T(4, bad, 10).init_limits() == L::invalid,
            T(4, 2, bad).init_limits() == L::invalid, axis.set_limits(bad, 10) == L::invalid,
            axis.set_velocity_limit(bad) == L::invalid, stages.set_limits(2, bad) == L::invalid,
            axis.set_acceleration_limit(bad) == L::invalid, report[0] == L::ignored,
            report[1] == L::invalid, refused.status() == S::bad_argument,
            refused.init_limits()[0] == L::refused, refused.init_limits()[1] == L::invalid,
            refused.step({{1, 1}}).status() == S::not_initialised,
            std::memcmp(&before, &axis.record(), sizeof before) == 0,
            qz::SmoothedMultiStageTracker<1>(4, {{2}}, {{9}}, {{bad}}, 0).status() == S::bad_argument,
            qz::Estimator<1>(4, {{1}}, {{bad}}).status() == S::bad_argument,
            qz::OneStepFitter<1>(qz::Vec<1>{{bad - 2}}).status() == S::bad_argument,  // 0 freezes
            qz::AveragingFilter<1>(10, bad).status() == S::bad_argument,
            qz::SmoothedValue(0, bad, 0.1, 0.01).status() == S::bad_argument,
            qz::ErrorComparator().set_gains({}, {{bad - 2}}) == S::bad_argument,
            qz::ErrorComparator().set_limits({}, {}, {{0, bad - 2}}) == S::bad_argument,
            axis.set_acceleration_limit(1e300) == L::clamped, axis.record().accLmt == 1000.0};
        // clang-format on
        for (std::size_t i = 0; i < std::size(checks); ++i)
            EXPECT_TRUE(checks[i]) << bad << ", check " << i;
    }

    // Samples: a non-finite one is refused and leaves the state as the finite ones made it.
    qz::Estimator<1> est(4, {{1}}, {{1}});
    qz::OneStepFitter<1> fit(qz::Vec<1>{{0.5}});
    qz::AveragingFilter<1> avg(5, 0.004);
    qz::SmoothedValue smv(0, 0.1, 0.1, 0.01);
    qz::ErrorComparator cmp;
    for (double x : {0.25, kNaN, kInf, -kInf, 1e300, 0.5}) {
        const qz::Vec<1> v{{x}};
        const qz::Status got[] = {est.step(est.record().lastStamp + 1, v, {}).status(),
                                  fit.update(v).status(), avg.update(v).status(),
                                  smv.update(x).status(), cmp.update({}, {{x}}).status()};
        for (S s : got) EXPECT_EQ(s, std::isfinite(x) ? S::ok : S::non_finite) << x;
    }
    // Finite samples whose sum or rate overflows give the last finite outputs, never inf or NaN.
    qz::AveragingFilter<1> wide(5, 0.004), fast(5, 1e-310);
    (void)fast.update({{1}});
    const auto up = wide.update({{1.7e308}}), down = wide.update({{-1.7e308}}),
               quick = fast.update({{2}});
    EXPECT_ALL(up.ok(), down.status() == S::non_finite, down->rate[0] == up->rate[0],
               quick.status() == S::non_finite, quick->rate[0] == 0.0);
    EXPECT_ALL(std::isfinite(est.record().heldPos[0]), std::isfinite(avg.record().avgSum[0]),
               std::isfinite(smv.value()), std::isfinite(cmp.record().integ[0]));
}

// The runaway that a NaN target used to cause: moving at speed towards 1.0, the targets turn NaN
// or infinite for 2 s, then finite again (0.5). Every cycle, the joint stays short of its last
// valid target and within its velocity (2) and acceleration (10) limits, and no output is NaN.
template <class Step>
void NoRunaway(const char *name, Step step) {
    const double dt = 0.004, velLmt = 2.0, accLmt = 10.0;
    auto first = step(kNaN);  // nothing accepted yet: the position is held, nothing jumps
    ASSERT_ALL(first.status() == S::non_finite, first.value() == 0.0) << name;
    double pos = *step(0.0), vel = 0.0;
    for (int k = 0; k < 1200; ++k) {
        const bool faulty = k >= 75 && k < 575;
        const auto r = step(faulty ? kNonFinite[k % 3] : k < 75 ? 1.0 : 0.5);
        const double v = (r.value() - pos) / dt;
        ASSERT_ALL(r.status() == (faulty ? S::non_finite : S::ok), r.value() <= 1.0,
                   std::abs(v) <= velLmt * (1 + 1e-12), std::abs(v - vel) <= accLmt * dt * 1.001)
            << name << ", cycle " << k;
        pos = r.value(), vel = v;
    }
    EXPECT_NEAR(pos, 0.5, 1e-9) << name;
}

TEST(CppHostile, NanTargetsWhileMovingNeverCarryAJointPastItsLastTarget) {
    qz::Tracker axis(4, 2, 10);
    qz::SmoothedTracker<2> arm(4, {{2, 2}}, {{10, 10}}, {{1000, 1000}});
    qz::MultiStageTracker stages(4, 2, 10, 0);
    qz::SmoothedMultiStageTracker<2> armM(4, {{2, 2}}, {{10, 10}}, {{1000, 1000}}, 0);
    const auto First = [](const auto &r) { return qz::Result<double>(r.value()[0], r.status()); };
    NoRunaway("Tracker", [&](double t) { return axis.step(t); });
    NoRunaway("MultiStageTracker", [&](double t) { return stages.step(t); });
    NoRunaway("SmoothedTracker", [&](double t) { return First(arm.step({{t, 0.25}})); });
    NoRunaway("SmoothedMultiStageTracker", [&](double t) { return First(armM.step({{t, 0.25}})); });
    // A position whose average over the span overflows is no place to stand (it gave inf).
    const auto far = arm.step({{1e301, 0}});
    EXPECT_ALL(arm.reset_to({{1.7e308, 0}}) == S::non_finite,
               armM.reset_to({{0, -1e301}}) == S::non_finite, far.status() == S::non_finite,
               std::abs(far->at(0) - 0.5) < 1e-9);
}

}  // namespace
