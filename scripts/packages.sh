# Debian packages, by purpose. The library itself needs only a C++17 compiler and libm.
QZ_BUILD_PACKAGES="g++ make cmake pkg-config"
# Test framework and the peer libraries used as test and benchmark oracles.
# clang++ compiles the C++ interface a second time, warnings as errors.
QZ_TEST_PACKAGES="$QZ_BUILD_PACKAGES clang libgtest-dev libbenchmark-dev libeigen3-dev libgsl-dev liborocos-kdl-dev"
# The Python binding: numpy at run time; setuptools, pip and venv to install it offline; pytest
# for its tests, matplotlib for the plots of its tuning example. Debian's /usr/bin/python3 is the
# interpreter these serve (another python3 first on PATH may lack them).
QZ_PYTHON_PACKAGES="python3 python3-numpy python3-setuptools python3-pip python3-venv"
# pip install ./python builds the library and the package's batch helper with CMake and g++.
# scipy is the peer that bench/bench_python.py measures the batch forms against.
QZ_TEST_PACKAGES="$QZ_TEST_PACKAGES $QZ_PYTHON_PACKAGES python3-pytest python3-matplotlib python3-scipy"
# Determinism matrix: a second compiler, and an aarch64 cross-compiler with a user-mode emulator.
QZ_DETERMINISM_PACKAGES="$QZ_BUILD_PACKAGES clang g++-aarch64-linux-gnu qemu-user"
# Motion-profile plots of the tracker examples (scripts/plots.sh).
QZ_PLOT_PACKAGES="gnuplot-nox"
# API reference: Doxygen renders the header comments, Python writes the index (scripts/docs-api.sh).
QZ_DOCS_PACKAGES="doxygen python3"
# Static analysis of the library's sources and C++ headers (scripts/static-analysis.sh); Eigen for
# qzmath/eigen.hpp.
QZ_ANALYSIS_PACKAGES="$QZ_BUILD_PACKAGES clang clang-tidy cppcheck libeigen3-dev"
# Line and branch coverage of src/ by the unit tests and the golden vectors (scripts/coverage.sh):
# gcov comes with gcc.
QZ_COVERAGE_PACKAGES="$QZ_TEST_PACKAGES gcc"
