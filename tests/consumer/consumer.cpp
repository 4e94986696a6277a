// The C++ interface from QZMath (installed, or in a parent project): qzmath.hpp finds the C
// headers beside it, and one tracker step moves the axis as the C consumer's does.
#include <qzmath/qzmath.hpp>

#include <cstdio>

int main() {
    qz::Tracker axis(4.0, 50.0, 100.0);
    (void)axis.step(0.0);
    const double out = axis.step(1.0);
    const auto inv = qz::inverse(qz::Mat3{{2, 0, 0, 0, 4, 0, 0, 0, 8}});
    std::printf("consumer (C++): %.6f, inverse %s\n", out, qz::to_string(inv.status()));
    return inv.ok() && inv.value()(2, 2) == 0.125 && out > 0.0 && out < 1.0 ? 0 : 1;
}
