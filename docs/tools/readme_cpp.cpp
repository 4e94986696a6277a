// The README's C++ example: a tracker and an inverse through qzmath.hpp, its code and what it
// prints.
#include <cmath>
#include <cstdio>

#include "docs_example.h"
#include "qzmath/qzmath.hpp"

int main() {
    ShowSource(__FILE__, "cpp",
               "#include <cmath>\n#include <cstdio>\n#include <qzmath/qzmath.hpp>\n\n");
    std::printf("\nwhich prints:\n\n```\n");
    // example begin
    qz::Tracker axis(1.0, 200.0, 1000.0);  // QZVDT_OnInit on a record it owns
    double cmd = axis.step(0.0).value();   // start where the axis is
    for (int k = 0; k < 2000; ++k) {       // 2 s of 1 ms cycles
        if (k == 100 && axis.set_velocity_limit(80.0) == qz::Limit::ramping) {
            std::puts("faster than 80 now: ramping down at 1000 units/s^2 before 80 holds");
        }
        const qz::Result<double> r = axis.step(k == 500 ? std::nan("") : 10.0);
        if (!r)
            std::printf("cycle %d: %s refused, still heading for 10\n", k,
                        qz::to_string(r.status()));
        cmd = r.value();
    }
    std::printf("after 2 s: %.17g\n", cmd);

    const auto inv = qz::inverse(qz::Mat6{});  // QZ_MatrixInv6; a Mat<9, 9> does not compile
    if (!inv) std::printf("inverse: %s\n", qz::to_string(inv.status()));
    // example end
    std::printf("```\n");
}
