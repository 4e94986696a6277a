// Golden-vector generator: writes input cases together with what the current library computes
// for them. Each cases_<module>.cpp registers its families; main() writes one file per family.
#ifndef QZC_GEN_H
#define QZC_GEN_H

#include <cstdint>
#include <cstdio>
#include <functional>
#include <initializer_list>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include "qzc.h"

namespace qzgen {

using Doubles = std::vector<double>;
using Ints = std::vector<int32_t>;

// Writes one vector file. pure() writes a case of a pure function; seq() ... end() a sequence of
// operations on one record, which op() runs and records (op() returns the frame after the call,
// so a sequence can steer by what the library did).
class Writer {
  public:
    explicit Writer(std::FILE *out) : out_(out) {}
    void comment(const std::string &text);
    void pure(const char *fn, const std::string &label, const Doubles &d, const Ints &i = {},
              const Doubles &x = {});
    void seq(const char *record, const std::string &label);
    const qzc_frame &op(const char *fn, const Doubles &d = {}, const Ints &i = {},
                        const Doubles &x = {});
    void fill(unsigned byte);
    void set(const char *path, double value);
    void set_int(const char *path, int32_t value);
    void state();
    void end();
    template <class T>
    T &record() {
        return *static_cast<T *>(qzc_rec_buffer());
    }

  private:
    const qzc_frame &call(const char *fn, bool in_seq, const std::string &head, const Doubles &d,
                          const Ints &i, const Doubles &x);
    std::FILE *out_;
    const qzc_record *rec_ = nullptr;
};

// A family of cases written to vectors/<name>.qzv.
struct Family {
    const char *name;
    std::function<void(Writer &)> build;
};
std::vector<Family> &families();
struct Register {
    Register(const char *name, std::function<void(Writer &)> build) {
        families().push_back({name, std::move(build)});
    }
};

// ---- Input helpers ----
constexpr double kInf = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
double Up(double x);    // next double towards +inf
double Down(double x);  // next double towards -inf
double FromBits(uint64_t b);
// The value and its neighbours one ulp either side.
Doubles Around(double x);
// Signed zeros, infinities, NaN, the smallest subnormal and normal, and the largest double.
Doubles Specials();
// Seeded generator: the same vectors on every run.
std::mt19937_64 &Rng();
double Uniform(double lo, double hi);
double AnyBits();  // any 64-bit pattern (NaNs, infinities, subnormals included)
// n values drawn uniformly from [lo, hi), in order.
Doubles Randoms(int n, double lo, double hi);
// The parts one after another.
Doubles Join(std::initializer_list<Doubles> parts);

}  // namespace qzgen

#endif
