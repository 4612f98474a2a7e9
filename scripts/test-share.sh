#!/usr/bin/env bash
# The size of the committed tests against the committed code, in non-blank
# lines that are not whole-line comments, of the C, C++ and Python files.
# Code: src include tools examples python. Tests: tests.
# Usage (from anywhere in the repository): scripts/test-share.sh [--check]
# With --check it exits 1 when the tests are more than 35 % of the code (the
# aim is a quarter to a third).
set -u
cd "$(dirname "$0")/.."
count() {
  git ls-files -- "$@" 2>/dev/null | grep -E '\.(c|cc|cpp|cxx|h|hh|hpp|py)$' | while read -r f; do
    [ -f "$f" ] && cat "$f"
  done | grep -v '^\s*$' | grep -Ev '^\s*(//|#[^a-z]|#$|\*|/\*)' | wc -l
}
code=$(count src include tools examples python)
tests=$(count tests)
[ "$code" -gt 0 ] || { echo "no committed code"; exit 0; }
pct=$(( 100 * tests / code ))
budget=$(( code * 35 / 100 ))
echo "code $code lines, tests $tests lines: tests are ${pct}% of the code (aim 25-33%; budget $budget lines)"
if [ "${1:-}" = "--check" ] && [ "$tests" -gt "$budget" ]; then
  echo "over the budget by $(( tests - budget )) lines"
  exit 1
fi
exit 0
