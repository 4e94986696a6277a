// Golden-vector generator: qzc_gen OUTDIR writes OUTDIR/<family>.qzv for every registered family.
// Regenerating is a deliberate act: the vectors then describe the library as it now is.
#include "gen.h"

#include <cmath>
#include <cstdlib>
#include <cstring>
#include <stdexcept>

namespace qzgen {

namespace {
std::string Clean(const std::string &label) {
    std::string s = label.empty() ? "-" : label;
    for (char &c : s)
        if (c == ' ' || c == '\t' || c == '\n') c = '_';
    return s;
}
[[noreturn]] void Fail(const std::string &what) {
    std::fprintf(stderr, "qzc_gen: %s\n", what.c_str());
    std::exit(2);
}
std::vector<char> &Line() {
    static std::vector<char> buf(QZC_LINEMAX);
    return buf;
}
qzc_frame &Frame() {
    static qzc_frame f;
    return f;
}
}  // namespace

std::vector<Family> &families() {
    static std::vector<Family> all;
    return all;
}

void Writer::comment(const std::string &text) { std::fprintf(out_, "# %s\n", text.c_str()); }

const qzc_frame &Writer::call(const char *name, bool in_seq, const std::string &head,
                              const Doubles &d, const Ints &i, const Doubles &x) {
    const qzc_fn *fn = qzc_find_fn(name);
    if (!fn) Fail(std::string("unknown function ") + name);
    if (in_seq != (fn->rec != nullptr) || (in_seq && fn->rec != rec_))
        Fail(std::string(name) + ": record mismatch");
    if ((int)d.size() > fn->nd || (int)i.size() > fn->ni || (int)x.size() > fn->nx)
        Fail(std::string(name) + ": too many arguments");
    qzc_frame &f = Frame();
    qzc_prepare(fn, &f);
    // Unlisted trailing inputs are zero (axis arrays beyond the axis count).
    for (int k = 0; k < fn->nd; ++k) f.d[k] = k < (int)d.size() ? d[k] : 0.0;
    for (int k = 0; k < fn->ni; ++k) f.i[k] = k < (int)i.size() ? i[k] : 0;
    for (int k = 0; k < fn->nx; ++k) f.x[k] = k < (int)x.size() ? x[k] : 0.0;
    char *buf = Line().data();
    std::snprintf(buf, 256, "%s", head.c_str());
    qzc_format_inputs(fn, &f, buf);
    std::strcat(buf, " =");
    f.rec = in_seq ? qzc_rec_buffer() : nullptr;
    fn->call(&f);
    if (!qzc_guards_ok(fn, &f)) Fail(std::string(name) + " wrote past its outputs");
    if (in_seq && !qzc_rec_guard_ok(rec_)) Fail(std::string(name) + " wrote past its record");
    qzc_format_outputs(fn, &f, buf);
    std::fprintf(out_, "%s\n", buf);
    return f;
}

void Writer::pure(const char *fn, const std::string &label, const Doubles &d, const Ints &i,
                  const Doubles &x) {
    call(fn, false, std::string("c ") + fn + " " + Clean(label), d, i, x);
}

void Writer::seq(const char *record, const std::string &label) {
    rec_ = qzc_find_record(record);
    if (!rec_) Fail(std::string("unknown record ") + record);
    qzc_rec_fill(rec_, 0);
    std::fprintf(out_, "seq %s %s\n", record, Clean(label).c_str());
}

const qzc_frame &Writer::op(const char *fn, const Doubles &d, const Ints &i, const Doubles &x) {
    if (!rec_) Fail("op outside a sequence");
    return call(fn, true, std::string("op ") + fn, d, i, x);
}

void Writer::fill(unsigned byte) {
    qzc_rec_fill(rec_, byte);
    std::fprintf(out_, "fill %u\n", byte);
}

void Writer::set(const char *path, double value) {
    if (!qzc_rec_set(rec_, qzc_rec_buffer(), path, qzc_bits(value)))
        Fail(std::string("set ") + path);
    char v[32];
    qzc_format('d', qzc_bits(value), v);
    std::fprintf(out_, "set %s %s\n", path, v);
}

void Writer::set_int(const char *path, int32_t value) {
    if (!qzc_rec_set(rec_, qzc_rec_buffer(), path, (uint64_t)(uint32_t)value))
        Fail(std::string("set ") + path);
    std::fprintf(out_, "set %s %ld\n", path, (long)value);
}

void Writer::state() {
    int n = qzc_rec_count(rec_);
    std::vector<uint64_t> bits(n);
    std::vector<char> types(n);
    qzc_rec_flatten(rec_, qzc_rec_buffer(), bits.data(), types.data(), n);
    std::string s = "state";
    char v[32];
    for (int k = 0; k < n; ++k) {
        qzc_format(types[k], bits[k], v);
        s += ' ';
        s += v;
    }
    std::fprintf(out_, "%s\n", s.c_str());
}

void Writer::end() {
    state();
    std::fprintf(out_, "end\n");
    rec_ = nullptr;
}

double Up(double x) { return std::nextafter(x, kInf); }
double Down(double x) { return std::nextafter(x, -kInf); }
double FromBits(uint64_t b) { return qzc_double(b); }
Doubles Around(double x) { return {Down(x), x, Up(x)}; }
Doubles Specials() {
    return {0.0,
            -0.0,
            kInf,
            -kInf,
            kNaN,
            -kNaN,
            FromBits(1),
            -FromBits(1),
            2.2250738585072014e-308,
            -2.2250738585072014e-308,
            1.7976931348623157e308,
            -1.7976931348623157e308};
}
std::mt19937_64 &Rng() {
    static std::mt19937_64 rng(20240611);
    return rng;
}
double Uniform(double lo, double hi) {
    // From the generator's raw bits, so the inputs do not depend on the C++ library's
    // distribution implementation.
    double u = (double)(Rng()() >> 11) * 0x1.0p-53;
    return lo + (hi - lo) * u;
}
double AnyBits() { return FromBits(Rng()()); }
Doubles Randoms(int n, double lo, double hi) {
    Doubles v;
    for (int k = 0; k < n; ++k) v.push_back(Uniform(lo, hi));
    return v;
}
Doubles Join(std::initializer_list<Doubles> parts) {
    Doubles all;
    for (const Doubles &p : parts) all.insert(all.end(), p.begin(), p.end());
    return all;
}

}  // namespace qzgen

int main(int argc, char **argv) {
    if (argc != 2) {
        std::fprintf(stderr, "usage: qzc_gen OUTDIR   (writes OUTDIR/<family>.qzv)\n");
        return 2;
    }
    for (const qzgen::Family &fam : qzgen::families()) {
        std::string path = std::string(argv[1]) + "/" + fam.name + ".qzv";
        std::FILE *out = std::fopen(path.c_str(), "w");
        if (!out) {
            std::fprintf(stderr, "qzc_gen: cannot write %s\n", path.c_str());
            return 2;
        }
        std::fprintf(out,
                     "qzv 1\n# %s: golden vectors written by qzc_gen from the library "
                     "(see conformance/README.md)\n",
                     fam.name);
        // Each family draws from its own seeded stream, so that adding a family leaves the
        // others' vectors as they were.
        uint64_t seed = 1469598103934665603ull;
        for (const char *c = fam.name; *c; ++c)
            seed = (seed ^ (unsigned char)*c) * 1099511628211ull;
        qzgen::Rng().seed(seed);
        qzgen::Writer w(out);
        fam.build(w);
        std::fclose(out);
        std::printf("wrote %s\n", path.c_str());
    }
    return 0;
}
