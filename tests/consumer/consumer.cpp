// The C++ interface from QZMath (installed, or in a parent project): qzmath.hpp finds the C
// headers and its group headers beside it, declares the version query, and one tracker step moves
// the axis as the C consumer's does.
#include <qzmath/qzmath.hpp>

#include <cstdio>

int main() {
    qz::Tracker axis(4.0, 50.0, 100.0);
    (void)axis.step(0.0);
    const double out = *axis.step(1.0);
    const auto inv = qz::inverse(qz::Mat3{{2, 0, 0, 0, 4, 0, 0, 0, 8}});
    std::printf("consumer (C++) of %u: %.6f, inverse %s\n", static_cast<unsigned>(QZ_Version()),
                out, qz::to_string(inv.status()));
    return inv.ok() && inv.value()(2, 2) == 0.125 && out > 0.0 && out < 1.0 ? 0 : 1;
}
