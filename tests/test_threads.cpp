// Reentrancy under overlapping calls. That no function keeps state outside the caller's records is
// checked on the object files themselves (no writable static storage, exported_symbols); this
// runs the one function that used to keep static work arrays, generalized_eig7, from two threads
// at once. Built with ThreadSanitizer (scripts/robustness.sh), a data race is reported as well.
#include <gtest/gtest.h>

#include <atomic>
#include <cstdint>
#include <thread>
#include <vector>

#include "QZBaseMath.h"
#include "QZMatrix.h"
#include "test_util.h"

namespace {

using Trace = std::vector<std::uint64_t>;

// generalized_eig7 keeps nothing between calls: two threads solving different problems at once,
// one of them failing every other call after three columns of the factor, started together so
// that the calls overlap, each get the bits they get alone, three rounds running.
TEST(Threads, GeneralizedEig7CallsMayOverlap) {
    auto work = [](int salt) {
        Trace tr;
        for (int c = 0; c < 400; ++c) {
            double A[49], B[49], V[49], lam[7];
            for (int i = 0; i < 7; ++i) {
                for (int j = 0; j < 7; ++j) {
                    A[i * 7 + j] = QZ_SIN_ARC(0.37 * c + salt + i * j + i + j);
                    B[i * 7 + j] = i == j ? 4.0 + i : 0.3 * QZ_SIN_ARC(0.1 * c - salt + i + j);
                }
            }
            if (salt == 1 && c % 2 == 1) B[3 * 7 + 3] = -1.0;
            for (double &x : V) x = -7.0;
            for (double &x : lam) x = -7.0;
            tr.push_back(generalized_eig7(1e-14, A, B, V, lam));
            for (double x : V) tr.push_back(qztest::Bits(x));
            for (double x : lam) tr.push_back(qztest::Bits(x));
        }
        return tr;
    };
    const Trace alone[2] = {work(0), work(1)};
    for (int round = 0; round < 3; ++round) {
        std::atomic<int> ready{0};
        Trace got[2];
        auto run = [&](int salt) {
            ready.fetch_add(1);
            while (ready.load() < 2) {}
            got[salt] = work(salt);
        };
        std::thread a(run, 0), b(run, 1);
        a.join(), b.join();
        EXPECT_TRUE(got[0] == alone[0]) << "round " << round;
        EXPECT_TRUE(got[1] == alone[1]) << "round " << round;
    }
}

}  // namespace
