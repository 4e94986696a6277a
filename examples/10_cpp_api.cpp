// Example 10: the C++ interface, qzmath.hpp.
//
// The seven joints of example 02 move from one pose to another with the N-axis smoothed tracker,
// owned by a qz::SmoothedTracker<7>; its limit setters say what became of each request, and a NaN
// target for one joint is refused while every joint keeps moving towards its last target. The
// flange frame of the arm of example 06 is then computed from the joint angles by a qz::Chain<7>
// (the kinematics module, built once from the arm's DH table), and printed as an XYZABC pose
// whose unit is part of its type.
//
// Usage: 10_cpp_api   (prints its results; writes nothing)
#include <qzmath/qzmath.hpp>

#include <cstdio>
#include <limits>

namespace {

constexpr std::size_t kJoints = 7;
using Joints = qz::Vec<kJoints>;

// The arm's modified Denavit-Hartenberg table: twist, length along the previous x axis, offset
// along the joint's z axis (millimetres), joint angle offset; the flange, 107 mm beyond the last
// joint, is the chain's tool.
constexpr double kHalfPi = 1.5707963267948966;
const std::array<qz::Link, kJoints> kArm = {{{{0.0}, 0.0, 333.0, {0.0}},
                                             {{-kHalfPi}, 0.0, 0.0, {0.0}},
                                             {{kHalfPi}, 0.0, 316.0, {0.0}},
                                             {{kHalfPi}, 82.5, 0.0, {0.0}},
                                             {{-kHalfPi}, -82.5, 384.0, {0.0}},
                                             {{kHalfPi}, 0.0, 0.0, {0.0}},
                                             {{kHalfPi}, 88.0, 0.0, {0.0}}}};
const qz::Mat4 kFlange = {{1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 107, 0, 0, 0, 1}};

}  // namespace

int main() {
    const Joints vel{{100, 100, 110, 130, 150, 180, 180}};          // deg/s
    const Joints acc{{300, 300, 350, 450, 500, 600, 600}};          // deg/s^2
    const Joints jerk{{3000, 3000, 3500, 5000, 6000, 8000, 8000}};  // deg/s^3
    const Joints start{{0, -30, 0, 60, 0, 45, 0}};
    const Joints goal{{20, -30, 10, -110, 15, 95, 40}};

    qz::SmoothedTracker<kJoints> arm(4.0, vel, acc, jerk);  // 4 ms cycle
    if (arm.status() != qz::Status::ok) return 1;

    Joints q = start;
    int settled = -1;
    for (int k = 0; k < 1000 && settled < 0; ++k) {
        if (k == 100) {
            // Halve joint 4's limit while it cruises, and ask joint 1 for what it already has.
            Joints lower = vel;
            lower[3] = 65.0;
            lower[0] = 100.05;
            const auto report = arm.set_velocity_limits(lower);
            std::printf("at 0.4 s: joint 1 limit 100.05 %s, joint 4 limit 65 %s\n",
                        qz::to_string(report[0]), qz::to_string(report[3]));
        }
        Joints target = k == 0 ? start : goal;
        if (k == 200)
            target[1] =
                std::numeric_limits<double>::quiet_NaN();  // a sensor fault upstream, for one cycle
        const auto pva = arm.step_pva(target);
        if (k == 200)
            std::printf(
                "at 0.8 s: a NaN target for joint 2 is refused (%s), the joints keep to "
                "the goal\n",
                qz::to_string(pva.status()));
        else if (!pva)
            return 1;
        q = pva->pos;
        bool all = true;
        for (std::size_t i = 0; i < kJoints; ++i)
            all = all && (q[i] - goal[i]) * (q[i] - goal[i]) < 1e-18;
        if (all) settled = k;
    }
    std::printf("seven joints settled on the goal at %.3f s (cycle %d)\n", settled * 0.004,
                settled);

    const qz::Chain<kJoints> chain(kArm, kFlange);
    Joints qRad;
    for (std::size_t i = 0; i < kJoints; ++i) qRad[i] = qz::to_rad(qz::Deg{q[i]}).value;
    const qz::Mat4 t = *chain.forward(qRad);
    const qz::PoseXYZ<qz::Deg> pose = *qz::pose_xyz<qz::Deg>(t);  // the unit is in the type
    std::printf("flange XYZABC: %.3f %.3f %.3f mm, A %.3f B %.3f C %.3f deg\n", pose[0], pose[1],
                pose[2], pose[3], pose[4], pose[5]);
    const qz::Mat4 back = *qz::transform(pose);
    double worst = 0.0;
    for (std::size_t i = 0; i < t.size(); ++i) {
        const double d = back[i] > t[i] ? back[i] - t[i] : t[i] - back[i];
        worst = d > worst ? d : worst;
    }
    std::printf("pose -> transform round trip: largest difference %.1e\n", worst);
    return 0;
}
