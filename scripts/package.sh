#!/usr/bin/env bash
# Builds the Debian packages libqzmath-dev (library, headers, CMake package, pkg-config file) and
# python3-qzmath (the Python package, which depends on it and on python3-numpy) into
# build-package/. Install them with: sudo apt-get install ./build-package/*.deb
set -euo pipefail
cd "$(dirname "$0")/.."
. scripts/packages.sh
bash scripts/setup-debian.sh $QZ_BUILD_PACKAGES $QZ_PYTHON_PACKAGES dpkg-dev file
rm -f build-package/*.deb
cmake -S . -B build-package -DCMAKE_BUILD_TYPE=Release -DCMAKE_INSTALL_PREFIX=/usr \
  -DQZ_BUILD_TESTS=OFF -DQZ_BUILD_EXAMPLES=OFF -DQZ_INSTALL_PYTHON=ON >/dev/null
cmake --build build-package -j"$(nproc)"
(cd build-package && cpack >/dev/null)
ls build-package/*.deb
