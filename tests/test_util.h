// Shared helpers for the test suite: reproducible random cases and bit-level comparisons.
#ifndef QZ_TEST_UTIL_H
#define QZ_TEST_UTIL_H

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <random>
#include <sstream>
#include <string>

namespace qztest {

// The seed of every random property test: QZ_TEST_SEED overrides it, and it is recorded in the
// test output so that a failure can be replayed.
inline std::uint32_t Seed() {
    static const std::uint32_t seed = [] {
        const char *env = std::getenv("QZ_TEST_SEED");
        return env ? static_cast<std::uint32_t>(std::strtoul(env, nullptr, 10)) : 20261123u;
    }();
    return seed;
}

inline std::mt19937_64 Rng() {
    ::testing::Test::RecordProperty("seed", static_cast<int>(Seed()));
    return std::mt19937_64(Seed());
}

inline double Uniform(std::mt19937_64 &rng, double lo, double hi) {
    return std::uniform_real_distribution<double>(lo, hi)(rng);
}

inline std::uint64_t Bits(double x) {
    std::uint64_t b;
    std::memcpy(&b, &x, sizeof b);
    return b;
}

// Bit-for-bit equality, so that -0.0 != +0.0 and a NaN equals the same NaN.
inline ::testing::AssertionResult SameBits(double a, double b) {
    if (Bits(a) == Bits(b)) return ::testing::AssertionSuccess();
    std::ostringstream m;  // one stream: the failure message would drop std::hex between parts
    m << a << " (0x" << std::hex << Bits(a) << ") vs " << std::dec << b << " (0x" << std::hex
      << Bits(b) << ")";
    return ::testing::AssertionFailure() << m.str();
}

// Every condition holds; a failure names the first that does not (1-based, as listed) with its
// own message. EXPECT_ALL(a, b, c) reads like EXPECT_TRUE(a && b && c) but says which one broke.
template <class... C>
::testing::AssertionResult All(const char *text, const C &...conditions) {
    int k = 0, failed = 0;
    std::string why;
    (void)((++k,
            bool(conditions)
                ? true
                : (failed = k, why = ::testing::AssertionResult(conditions).message(), false)) &&
           ...);
    if (!failed) return ::testing::AssertionSuccess();
    return ::testing::AssertionFailure() << "condition " << failed << " of (" << text << ") fails"
                                         << (why.empty() ? "" : ": ") << why;
}
#define EXPECT_ALL(...) EXPECT_TRUE(qztest::All(#__VA_ARGS__, __VA_ARGS__))
#define ASSERT_ALL(...) ASSERT_TRUE(qztest::All(#__VA_ARGS__, __VA_ARGS__))

inline double NextUp(double x) { return std::nextafter(x, INFINITY); }
inline double NextDown(double x) { return std::nextafter(x, -INFINITY); }

}  // namespace qztest

#endif
