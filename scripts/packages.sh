# Debian packages, by purpose. The library itself needs only a C++17 compiler and libm.
QZ_BUILD_PACKAGES="g++ make cmake pkg-config"
# Test framework and the peer libraries used as test and benchmark oracles.
QZ_TEST_PACKAGES="$QZ_BUILD_PACKAGES libgtest-dev libbenchmark-dev libeigen3-dev libgsl-dev liborocos-kdl-dev"
