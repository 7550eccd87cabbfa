#!/usr/bin/env bash
# The installed bsconv runs from the install alone, as a user runs it: it finds its libraries and
# its sample records from its own folder, wherever the install was put.
set -euo pipefail
prefix=$1
expected_version=$2
bsconv="$prefix/bin/bsconv"

# The version header installed with the library is the project's version.
version=$(env -u LD_LIBRARY_PATH "$bsconv" --version)
[ "$version" = "bsconv $expected_version" ] || { echo "--version printed '$version'" >&2; exit 1; }
grep -q "#define BSUTILS_VERSION_STRING \"$expected_version\"" "$prefix/include/bsutils/version.h" ||
  { echo "installed version.h does not say $expected_version" >&2; exit 1; }

decoded=$(env -u LD_LIBRARY_PATH "$bsconv" decode packed --scale 2 001234567C)
[ "$decoded" = "12345.67" ] || { echo "decode printed '$decoded', expected 12345.67" >&2; exit 1; }

first_line=$(env -u LD_LIBRARY_PATH "$bsconv" demo | head -n 1)
expected="Sample records: customers.bin, 5 records of 30 bytes"
[ "$first_line" = "$expected" ] || { echo "demo began '$first_line'" >&2; exit 1; }

# The demo must have read the installed samples, not the source tree's: a moved install still runs.
moved=$(mktemp -d)
trap 'rm -rf "$moved"' EXIT
cp -a "$prefix/." "$moved/"
env -u LD_LIBRARY_PATH "$moved/bin/bsconv" demo --json >/dev/null
echo "installed bsconv: decode and demo ran from $prefix and from a moved copy"
