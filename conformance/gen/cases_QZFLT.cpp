// Operation sequences for the averaging filter and the smoothed velocity.
#include <cmath>

#include "gen.h"

namespace qzgen {
namespace {

void Averaging(Writer &w) {
    w.seq("QZAVGFState", "refusals-before-init");
    w.op("QZAVGF_OnFilt", {1, 2, 3});
    w.op("QZAVGF_OnEmpty");
    for (auto ch : {0, 9, -1, 1, 1, 8}) {
        int len = ch == 1 ? 0 : 5;
        w.op("QZAVGF_OnInit", {0.001}, {ch, len});
    }
    w.op("QZAVGF_OnInit", {0.001}, {1, 101});
    w.op("QZAVGF_OnFilt", {1, 2, 3});
    w.op("QZAVGF_OnInit", {0.001}, {8, 100});
    w.end();

    w.seq("QZAVGFState", "window-1");
    w.op("QZAVGF_OnInit", {0.01}, {1, 1});
    for (int k = 0; k < 20; ++k) w.op("QZAVGF_OnFilt", {Uniform(-1, 1)});
    w.end();

    w.seq("QZAVGFState", "window-4-priming-and-restart");
    w.op("QZAVGF_OnInit", {0.5}, {1, 4});
    for (double x : {0.0, 4.0, 4.0, 4.0, 4.0, 4.0}) w.op("QZAVGF_OnFilt", {x});
    w.op("QZAVGF_OnEmpty");
    w.op("QZAVGF_OnFilt", {5.0});
    w.op("QZAVGF_OnFilt", {-0.0});
    w.end();

    w.seq("QZAVGFState", "three-channels-window-7-wraps");
    w.op("QZAVGF_OnInit", {0.004}, {3, 7});
    for (int k = 0; k < 400; ++k) {
        Doubles x = {std::sin(k * 0.05) + Uniform(-0.01, 0.01), 1e6 + Uniform(-1, 1), k * 0.1};
        if (k == 200) w.op("QZAVGF_OnEmpty");
        if (k % 9 == 4)
            w.op("QZAVGF_OnFilt.same", {}, {}, x);
        else
            w.op("QZAVGF_OnFilt", x);
        if (k == 99) w.state();
    }
    w.end();

    w.seq("QZAVGFState", "eight-channels-window-100");
    w.op("QZAVGF_OnInit", {0.001}, {8, 100});
    for (int k = 0; k < 260; ++k) {
        Doubles x;
        for (int c = 0; c < 8; ++c) x.push_back(Uniform(-10, 10) * (c + 1) + 1e3 * c);
        w.op("QZAVGF_OnFilt", x);
        if (k == 100) w.state();
    }
    w.end();

    w.seq("QZAVGFState", "non-finite-samples-and-zero-period");
    w.op("QZAVGF_OnInit", {0.0}, {2, 5});
    for (int k = 0; k < 12; ++k) w.op("QZAVGF_OnFilt", {k == 3 ? kNaN : 1.0, k == 5 ? kInf : 2.0});
    w.end();
}

void SmoothedVelocity(Writer &w) {
    w.seq("QZSMVState", "init-refusals");
    const Doubles bad[] = {{0, 0, 0.1, 0.01},          {0, 1, 0.1, 0.01},
                           {0, Down(1e-9), 0.1, 0.01}, {0, Up(0.9999999999), 0.1, 0.01},
                           {0, 0.5, 1e-6, 1e-6},       {0, 0.5, 0.1, 0.2},
                           {0, 0.5, 0.1, Up(0.1)},     {0, 0.5, 0.1, Down(1e-5)},
                           {3, kNaN, 0.1, 0.01},       {4, 0.5, kNaN, kNaN},
                           {5, 1e-9, 1e-5, 1e-5},      {6, 0.9999999999, 0.1, 0.1}};
    for (const Doubles &b : bad) {
        w.op("QZSMV_OnInit", b);
        w.state();
    }
    w.end();

    for (double alpha : {0.5, 0.1, 0.002}) {
        w.seq("QZSMVState", "ramps-alpha-" + std::to_string(alpha));
        w.op("QZSMV_OnInit", {0, alpha, 0.1, 0.01});
        for (int k = 0; k < 40; ++k) w.op("QZSMV_OnUpdateV", {1.0});
        for (int k = 0; k < 40; ++k) w.op("QZSMV_OnUpdateVZO", {0.0});
        for (int k = 0; k < 10; ++k) w.op("QZSMV_OnUpdateZO", {0.005});
        w.op("QZSMV_OnUpdateVZO", {0.005});
        w.op("QZSMV_OnUpdateVZO", {1e-9});
        w.op("QZSMV_OnUpdateVZO", {-0.0});
        w.end();
    }

    w.seq("QZSMVState", "random-targets-defaults");
    w.op("QZSMV_OnInit", {0.3, 0, 0, 0});
    for (int k = 0; k < 300; ++k) {
        double t = k % 50 < 25 ? Uniform(-0.2, 1.2) : (k % 2 ? 1.0 : 0.0);
        w.op(k % 3 == 0   ? "QZSMV_OnUpdateV"
             : k % 3 == 1 ? "QZSMV_OnUpdateVZO"
                          : "QZSMV_OnUpdateZO",
             {t});
    }
    w.op("QZSMV_OnUpdateVZO", {kNaN});
    w.op("QZSMV_OnUpdateVZO", {0.5});
    w.end();
}

Register averaging("QZFLT_averaging", Averaging);
Register smoothed("QZFLT_smoothed_velocity", SmoothedVelocity);

}  // namespace
}  // namespace qzgen
