# Debian packages, by purpose. The library itself needs only a C++17 compiler and libm.
QZ_BUILD_PACKAGES="g++ make cmake pkg-config"
# Test framework and the peer libraries used as test and benchmark oracles.
QZ_TEST_PACKAGES="$QZ_BUILD_PACKAGES libgtest-dev libbenchmark-dev libeigen3-dev libgsl-dev liborocos-kdl-dev"
# The Python binding's tests, and the plots of its tuning example.
QZ_TEST_PACKAGES="$QZ_TEST_PACKAGES python3 python3-pytest python3-matplotlib"
# Determinism matrix: a second compiler, and an aarch64 cross-compiler with a user-mode emulator.
QZ_DETERMINISM_PACKAGES="$QZ_BUILD_PACKAGES clang g++-aarch64-linux-gnu qemu-user"
# Motion-profile plots of the tracker examples (scripts/plots.sh).
QZ_PLOT_PACKAGES="gnuplot-nox"
# API reference: Doxygen renders the header comments, Python writes the index (scripts/docs-api.sh).
QZ_DOCS_PACKAGES="doxygen python3"
