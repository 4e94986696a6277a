// kinematics.hpp: serial-chain kinematics of the C++ interface (forward kinematics, Jacobian,
// orientation error, damped least squares, tracker lead, position IK), over QZKinematics.h.
//
// Families (namespace qz): Chain<N> orientation_error lead
//
// The C functions already refuse NaN, infinite and absurd input; here each refusal has its
// Status: non_finite (a NaN, an infinity, or a value beyond the C bounds), bad_argument (a table,
// tool, limit or damping the chain refuses), not_initialised, singular (undamped at a lost rank)
// and failed (the IK reached its iteration cap).
#ifndef QZMATH_KINEMATICS_HPP
#define QZMATH_KINEMATICS_HPP

#include <cstddef>
#include <cstdint>

#include "QZKinematics.h"
#include "core.hpp"
#include "trackers.hpp"

namespace qz {

namespace detail {
// The Status of a QZKin_ result; refused names what a refused chain input was.
inline Status kin_status(std::int32_t rc, Status refused = Status::bad_argument) noexcept {
    switch (rc) {
        case QZ_KIN_OK: return Status::ok;
        case QZ_KIN_ERR_COUNT: return Status::not_initialised;
        case QZ_KIN_ERR_INPUT: return Status::non_finite;
        case QZ_KIN_ERR_SINGULAR: return Status::singular;
        default: return refused;
    }
}
}  // namespace detail

// One link of a modified DH table: RotX(alpha) TransX(a) RotZ(q + offset) TransZ(d).
struct Link {
    Rad alpha;
    double a;
    double d;
    Rad offset;
};

// The Jacobian (6 x N, rows 0-2 linear, 3-5 angular, at the tool point, base axes) with the tool
// transform it was formed at.
template <std::size_t N>
struct JacobianAt {
    Mat<6, N> j;
    Mat4 tool;
};

// Joint velocities of the damped solver, with the estimated smallest singular value of the
// unitless Jacobian and the damping applied.
template <std::size_t N>
struct JointVelocities {
    Vec<N> qdot;
    double sigma;
    double lambda;
};

// Joint angles of the position IK, the position (length unit) and orientation (rad) errors left,
// and the Newton steps taken.
template <std::size_t N>
struct IkSolution {
    Vec<N> q;
    double positionError;
    double orientationError;
    std::int32_t iterations;
};

// A chain of N revolute joints (N = 1..8), built once; a copyable value without heap.
template <std::size_t N>
class Chain {
    static_assert(N >= 1 && N <= QZ_KIN_MAX_JOINTS,
                  "qz::Chain<N>: the library chains 1 to 8 joints");

  public:
    // From the links, a tool transform (last joint frame to tool, identity by default) and joint
    // limits (rad, +-1e4 by default). status() says whether the chain accepted them.
    explicit Chain(const std::array<Link, N> &links, const Mat4 &tool = identity(),
                   const Vec<N> &lower = filled(-1e4), const Vec<N> &upper = filled(1e4)) noexcept {
        double table[4 * N];
        for (std::size_t i = 0; i < N; ++i) {
            table[4 * i] = links[i].alpha.value;
            table[4 * i + 1] = links[i].a;
            table[4 * i + 2] = links[i].d;
            table[4 * i + 3] = links[i].offset.value;
        }
        init_ = detail::kin_status(QZKin_ChainInit(&c_, static_cast<std::int32_t>(N), table,
                                                   tool.data(), lower.data(), upper.data()));
    }
    // ok, or bad_argument when the table, tool or limits were refused (the chain is then unusable).
    [[nodiscard]] Status status() const noexcept { return init_; }
    // Length scale, threshold and largest damping of the damped solver; bad_argument outside
    // (0, 1e9], (0, 1], [0, 1], the damping in force unchanged.
    [[nodiscard]] Status set_damping(double lengthScale, double threshold,
                                     double lambdaMax) noexcept {
        const std::int32_t rc = QZKin_SetDamping(&c_, lengthScale, threshold, lambdaMax);
        return rc == QZ_KIN_ERR_INPUT ? Status::bad_argument : detail::kin_status(rc);
    }
    // Tool transform for joint angles q.
    [[nodiscard]] Result<Mat4> forward(const Vec<N> &q) const noexcept {
        Result<Mat4> t{Result<Mat4>::Unwritten{}};
        const std::int32_t rc = QZKin_Forward(&c_, q.data(), t.value().data());
        if (rc != QZ_KIN_OK) t.fail(detail::kin_status(rc), true);
        return t;
    }
    // Tool pose x, y, z, qx, qy, qz, qw for joint angles q.
    [[nodiscard]] Result<PosQuat> pose(const Vec<N> &q) const noexcept {
        Result<PosQuat> p{Result<PosQuat>::Unwritten{}};
        const std::int32_t rc = QZKin_ForwardPosQuat(&c_, q.data(), p.value().data());
        if (rc != QZ_KIN_OK) p.fail(detail::kin_status(rc), true);
        return p;
    }
    // Geometric Jacobian and tool transform for joint angles q.
    [[nodiscard]] Result<JacobianAt<N>> jacobian(const Vec<N> &q) const noexcept {
        Result<JacobianAt<N>> r{typename Result<JacobianAt<N>>::Unwritten{}};
        const std::int32_t rc =
            QZKin_Jacobian(&c_, q.data(), r.value().j.data(), r.value().tool.data());
        if (rc != QZ_KIN_OK) r.fail(detail::kin_status(rc), true);
        return r;
    }
    // Joint velocities for a twist (linear, angular) by damped least squares.
    [[nodiscard]] Result<JointVelocities<N>> solve(const Mat<6, N> &j,
                                                   const Vec<6> &twist) const noexcept {
        Result<JointVelocities<N>> r{typename Result<JointVelocities<N>>::Unwritten{}};
        double report[2];
        const std::int32_t rc =
            QZKin_DampedLeastSquares(&c_, j.data(), twist.data(), r.value().qdot.data(), report);
        if (rc != QZ_KIN_OK) {
            r.fail(detail::kin_status(rc), true);
            return r;
        }
        r.value().sigma = report[0];
        r.value().lambda = report[1];
        return r;
    }
    // Joint angles that put the tool at pose, from seed; failed when maxIter steps did not reach
    // the tolerances (the value then holds the last iterate and its errors).
    [[nodiscard]] Result<IkSolution<N>> solve_position(const PosQuat &pose, const Vec<N> &seed,
                                                       std::int32_t maxIter = 100,
                                                       double tolPos = 1e-6,
                                                       double tolRot = 1e-9) const noexcept {
        Result<IkSolution<N>> r{typename Result<IkSolution<N>>::Unwritten{}};
        double residual[2];
        IkSolution<N> &s = r.value();
        const std::int32_t rc = QZKin_SolvePosition(&c_, pose.data(), seed.data(), maxIter, tolPos,
                                                    tolRot, s.q.data(), residual, &s.iterations);
        if (rc < 0) {
            r.fail(detail::kin_status(rc), true);
            return r;
        }
        s.positionError = residual[0];
        s.orientationError = residual[1];
        if (rc == 0) r.fail(Status::failed, false);
        return r;
    }
    const QZKinChain &record() const noexcept { return c_; }

  private:
    static Mat4 identity() noexcept {
        Mat4 t{};
        for (std::size_t i = 0; i < 4; ++i) t(i, i) = 1.0;
        return t;
    }
    static Vec<N> filled(double x) noexcept {
        Vec<N> v;
        v.fill(x);
        return v;
    }
    QZKinChain c_{};
    Status init_;
};

// Rotation vector (rad, base axes) that turns actual into target, accurate near 0 and pi;
// non_finite for a NaN, an infinity or a quaternion of (almost) zero or absurd length.
[[nodiscard]] inline Result<RotVec> orientation_error(const Quat &target,
                                                      const Quat &actual) noexcept {
    Result<RotVec> r{Result<RotVec>::Unwritten{}};
    const std::int32_t rc = QZKin_OrientationError(target.data(), actual.data(), r.value().data());
    if (rc != QZ_KIN_OK)
        r.fail(detail::rotation_status(target, actual) == Status::zero_length ? Status::zero_length
                                                                              : Status::non_finite,
               true);
    return r;
}

// Per axis, how far ahead of a path moving at velocity v (and acceleration a) to place the
// tracker's target so that its output lies on the path: v L + a L^2 / 2, L its steady lag.
template <std::size_t N>
[[nodiscard]] Result<Vec<N>> lead(const SmoothedTracker<N> &tracker, const Vec<N> &v,
                                  const Vec<N> &a = Vec<N>{}) noexcept {
    Result<Vec<N>> r{typename Result<Vec<N>>::Unwritten{}};
    const std::int32_t rc =
        QZKin_TrackerLead(&tracker.record(), v.data(), a.data(), r.value().data(), nullptr);
    if (rc != QZ_KIN_OK) r.fail(detail::kin_status(rc), true);
    return r;
}

}  // namespace qz

#endif  // QZMATH_KINEMATICS_HPP
