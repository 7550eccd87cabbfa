#!/usr/bin/env bash
# The subsystems depend one way: nothing in core/ reaches another subsystem, through its private
# headers or through the public headers of the conversions, and nothing in services/ reaches the
# library. Each include that breaks this is printed.
set -euo pipefail
source_dir=$1
status=0

check() {
  local folder=$1 pattern=$2 found
  found=$(grep -rnE "^#include ${pattern}" "$source_dir/$folder" || true)
  if [ -n "$found" ]; then
    echo "$folder/ includes what it must not:" >&2
    echo "$found" >&2
    status=1
  fi
}

check bsutils/core '"(binary|text|codepage|datetime|framework|records)/|"datacnvprivate\.h"'
check bsutils/core '<bsutils/(dataconv|cpunicodeconverter|cpbase64converter|textbufferreader|textbufferwriter|numerictextformat)\.h>'
check services '<bsutils/|"core/'
check include/zan '<bsutils/'
[ $status -eq 0 ] && echo "core/ and the services depend on no other subsystem"
exit $status
