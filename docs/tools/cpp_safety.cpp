// The C++ guide's worked example: what the interface refuses, and how a tracker keeps moving
// through a fault; its code and what it prints.
#include <cstdio>
#include <limits>

#include "qzmath/qzmath.hpp"
#include "docs_example.h"

int main() {
    ShowSource(__FILE__, "cpp", "#include <qzmath/qzmath.hpp>\n\n");
    std::printf("\nwhich prints:\n\n```\n");
    // example begin
    // Two joints, 4 ms cycles, 2 rad/s, 10 rad/s^2, 1000 rad/s^3, at rest at 0.
    qz::SmoothedTracker<2> arm(4.0, {{2, 2}}, {{10, 10}}, {{1000, 1000}});
    if (arm.reset_to({{0.0, 0.0}}) != qz::Status::ok) return 1;
    const double nan = std::numeric_limits<double>::quiet_NaN();
    double highest = 0.0;
    qz::Vec<2> pos{};
    for (int k = 0; k < 1000; ++k) {
        const bool fault = k >= 75 && k < 575;  // joint 1's target is NaN for 2 s
        const auto step = arm.step({{fault ? nan : 1.0, 0.5}});
        pos = step.value();  // the commanded positions, whatever the status
        highest = pos[0] > highest ? pos[0] : highest;
        if (k == 75 || k == 575)
            std::printf("cycle %d: %s, joint 1 at %.4f\n", k, qz::to_string(step.status()), pos[0]);
    }
    std::printf("joint 1 never above %.4f; joints at %.4f %.4f\n", highest, pos[0], pos[1]);

    const auto limits = arm.set_limits({{0.0, 3.0}}, {{10.0, 10.0}});  // a zero velocity limit
    const auto acc = arm.set_acceleration_limits({{10.0, 1e6}});
    std::printf("limits: joint 1 %s, joint 2 %s; accelerations: joint 2 %s\n",
                qz::to_string(limits[0]), qz::to_string(limits[1]), qz::to_string(acc[1]));

    qz::Mat3 m = qz::identity<3>();
    m(1, 2) = std::numeric_limits<double>::infinity();
    std::printf("inverse: %s; rotation of a zero quaternion: %s; quaternion of zeros: %s\n",
                qz::to_string(qz::inverse(m).status()),
                qz::to_string(qz::rotation(qz::Quat{}).status()),
                qz::to_string(qz::to_quat(qz::Mat3{}).status()));
    const qz::Mat3 &kept = qz::inverse(qz::identity<3>()).value();  // a copy, not a reference
    std::printf("a value from a temporary lives on: %.1f\n", kept(2, 2));
    // example end
    std::printf("```\n");
}
