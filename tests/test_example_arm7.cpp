// The seven-joint arm of examples/arm7.h (example 09 and the guides' measurements): its forward
// kinematics and geometric Jacobian, built from QZ_DH2Matrix, against KDL's chain solvers.
#include <kdl/chainfksolverpos_recursive.hpp>
#include <kdl/chainjnttojacsolver.hpp>

#include "../examples/arm7_kdl.hpp"
#include "test_util.h"

using namespace qztest;

// KDL's Jacobian has the same layout: linear velocity of the tip (the flange origin) over angular
// velocity, in base axes. Lengths in millimetres and in metres.
TEST(ExampleArm7, ForwardKinematicsAndJacobianMatchKdl) {
    auto rng = Rng();
    for (const double scale : {1.0, 0.001}) {
        const KDL::Chain chain = Arm7Chain(scale);
        KDL::ChainFkSolverPos_recursive fk(chain);
        KDL::ChainJntToJacSolver jac(chain);
        for (int n = 0; n < 300; ++n) {
            KDL::JntArray qk(ARM7_JOINTS);
            KDL::Frame f;
            KDL::Jacobian jk(ARM7_JOINTS);
            double q[ARM7_JOINTS], j[42], t[16], tf[16];
            for (int i = 0; i < ARM7_JOINTS; ++i) qk(i) = q[i] = Uniform(rng, -3.1, 3.1);
            arm7_jacobian(q, scale, j, t);
            arm7_fk(q, scale, tf);
            ASSERT_EQ(fk.JntToCart(qk, f), 0);
            ASSERT_EQ(jac.JntToJac(qk, jk), 0);
            EXPECT_EQ(std::memcmp(t, tf, sizeof t), 0);  // the Jacobian's pose is the kinematics'
            for (int e = 0; e < 12; ++e)
                EXPECT_NEAR(t[e], e % 4 == 3 ? f.p(e / 4) : f.M(e / 4, e % 4),
                            e % 4 == 3 ? 1e-12 * scale * 1000 : 1e-14)
                    << n << " " << e;
            for (int e = 0; e < 42; ++e)
                EXPECT_NEAR(j[e], jk(e / 7, e % 7), e < 21 ? 1e-12 * scale * 1000 : 1e-14)
                    << n << " " << e;
        }
    }
}
