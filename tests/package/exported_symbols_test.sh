#!/usr/bin/env bash
# The shared library exports the public interface and nothing else: every dynamic symbol it defines
# belongs to a class, function or object that a public header marks BSUTILS_EXPORT, or is an
# instantiation of a standard library template (whose visibility the standard headers fix).
set -euo pipefail
library=$1
include_dir=$2

public_names=$(
  sed -n -E 's/^class BSUTILS_EXPORT ([A-Za-z_0-9]+).*/\1/p;
             s/^BSUTILS_EXPORT .*[ *&]([A-Za-z_0-9]+)( *\(|;).*/\1/p' "$include_dir"/*.h | sort -u)
[ -n "$public_names" ] || { echo "no exported names found in $include_dir" >&2; exit 1; }
names_alternation=$(paste -sd '|' <<<"$public_names")

strays=$(
  nm -D --defined-only "$library" | cut -d' ' -f3- | c++filt |
    sed -E 's/^(typeinfo name for|typeinfo for|vtable for|VTT for|guard variable for|(non-)?virtual thunk to) //' |
    grep -v -E "^(std::|__gnu_cxx::)" |
    grep -v -E "(^|[ (<,])($names_alternation)(::|\(|<|$)" || true)
if [ -n "$strays" ]; then
  echo "symbols exported that no public header declares:" >&2
  echo "$strays" >&2
  exit 1
fi
echo "$(nm -D --defined-only "$library" | wc -l) exported symbols, all of the public interface"
