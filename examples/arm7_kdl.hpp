// The seven-joint arm of arm7.h as a KDL chain, for the checks and benchmarks that set the
// library's kinematics beside KDL's (C++ only).
#ifndef QZ_EXAMPLE_ARM7_KDL_HPP
#define QZ_EXAMPLE_ARM7_KDL_HPP

#include <kdl/chain.hpp>

#include "arm7.h"

// KDL puts a segment's joint before its fixed frame, so each modified DH link RotX(alpha)
// TransX(a) RotZ(theta) TransZ(d) is split: TransZ(d) of link i and RotX TransX of link i + 1
// follow joint i.
inline KDL::Chain Arm7Chain(double scale) {
    KDL::Chain chain;
    const Arm7Link &first = kArm7Links[0];
    chain.addSegment(
        KDL::Segment(KDL::Joint(KDL::Joint::None),
                     KDL::Frame::DH_Craig1989(scale * first.a, first.alpha, 0.0, 0.0)));
    for (int i = 0; i < ARM7_JOINTS; ++i) {
        const bool last = i + 1 == ARM7_JOINTS;
        const Arm7Link &next = last ? kArm7Flange : kArm7Links[i + 1];
        const KDL::Frame tip = KDL::Frame(KDL::Vector(0.0, 0.0, scale * kArm7Links[i].d)) *
                               KDL::Frame::DH_Craig1989(scale * next.a, next.alpha, 0.0, 0.0) *
                               KDL::Frame(KDL::Vector(0.0, 0.0, last ? scale * next.d : 0.0));
        chain.addSegment(KDL::Segment(KDL::Joint(KDL::Joint::RotZ), tip));
    }
    return chain;
}

#endif
