#!/usr/bin/env bash
# Builds the Debian package libqzmath-dev (library, headers, CMake package, pkg-config file)
# into build-package/. Install it with: sudo apt-get install ./build-package/libqzmath-dev_*.deb
set -euo pipefail
cd "$(dirname "$0")/.."
. scripts/packages.sh
bash scripts/setup-debian.sh $QZ_BUILD_PACKAGES dpkg-dev file
cmake -S . -B build-package -DCMAKE_BUILD_TYPE=Release -DCMAKE_INSTALL_PREFIX=/usr \
  -DQZ_BUILD_TESTS=OFF -DQZ_BUILD_EXAMPLES=OFF >/dev/null
cmake --build build-package -j"$(nproc)"
(cd build-package && cpack >/dev/null)
ls build-package/*.deb
