#!/usr/bin/env bash
# Line and branch coverage of the library (src/) by the whole test suite: builds and runs the `coverage`
# preset, then reports with gcovr (installed when missing and run as root).
#
#   tools/coverage.sh            # summary per file on the terminal, HTML in build/coverage/report/
#
# The figures cover the library's own sources only: the simulator, the tools and the tests are excluded.
set -euo pipefail
cd "$(dirname "$0")/.."

tools/install-deps.sh gcovr
find build/coverage -name '*.gcda' -delete 2>/dev/null || true # figures of this run only
cmake --workflow --preset coverage

mkdir -p build/coverage/report
gcovr --root . --filter 'src/' --object-directory build/coverage --exclude-directories 'build/coverage/CMakeFiles' \
      --exclude-unreachable-branches --exclude-throw-branches \
      --txt --print-summary \
      --html-details build/coverage/report/index.html
echo "HTML report: build/coverage/report/index.html"
