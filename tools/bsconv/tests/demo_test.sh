#!/usr/bin/env bash
# bsconv demo on the shipped sample records, then on copies with one byte or one value changed,
# which must fail with the difference named. Stops at the first output that differs.
set -uo pipefail
bsconv=$1
data=$(cd "$(dirname "$0")/../data" && pwd)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

fail() {
  echo "FAIL: $*" >&2
  exit 1
}
# Runs the tool; leaves out (spaces squeezed, so that alignment does not matter), err and status.
run() {
  "$bsconv" "$@" >"$work/raw" 2>"$work/err"
  status=$?
  tr -s ' ' <"$work/raw" >"$work/out"
}
expect_lines() { # FILE; the expected lines on stdin, up to a blank line
  while IFS= read -r line && [[ -n $line ]]; do
    grep -qxF -- "$line" "$1" || fail "$(basename "$1") has no line '$line':"$'\n'"$(cat "$1")"
  done
}

run demo
[[ $status == 0 && ! -s $work/err ]] || fail "demo: status $status: $(cat "$work/err")"
expect_lines "$work/out" <<'EOF'
 # name points balance units rate
 1 Álvarez 1200 1234.56 42 1.25E1
 2 Becker -250 -87.05 -3 -6.25E-2
 3 Chen 75000 1000000 1234567 3.75E0
 4 Dubois 15 0.1 0 5.0E-1
 5 Okafor -2147483648 -9999999.99 -9999999 1.0E2
 1 6593A5819985A9404040 000004B0 000123456C F0F0F0F0F0F4F2 41C80000
 2 C2858392859940404040 FFFFFF06 000008705D F0F0F0F0F0F0D3 C0100000
 5 D6928186969940404040 80000000 999999999D F9F9F9F9F9F9D9 42640000
 balance 14 5 packed --scale 2
 balance: 000008705D -> -87.05
 try: bsconv decode zoned --sign trailing F0F0F0F0F0F0D3
 try: bsconv decode float --format hfp C0100000
EOF
[[ $(grep -c '30 bytes re-encoded, identical$' "$work/out") == 5 ]] || fail "demo: $(cat "$work/raw")"

run demo --json
[[ $status == 0 ]] || fail "demo --json: status $status: $(cat "$work/err")"
[[ $(grep -c '"name":' "$work/out") == 5 ]] || fail "demo --json: $(cat "$work/raw")"
expect_lines "$work/out" <<'EOF'
 "records": [
 "name": "Álvarez",
 "points": "-2147483648",
 "balance": "-87.05",
 "units": "1234567",
 "rate": "-6.25E-2"
EOF

run demo --help
[[ $status == 0 ]] && grep -qF 'bsconv demo --json' "$work/out" || fail "demo --help: $(cat "$work/raw")"
run demo --data "$work/none"
[[ $status == 2 ]] || fail "demo --data to no directory: status $status"

# A copy of the data with one change: "byte OFFSET HEX" in customers.bin or "value OLD NEW" in
# customers.json, then the lines the tour must print. Each case ends with a blank line.
corrupted() {
  mkdir -p "$work/copy" && cp "$data"/customers.* "$work/copy"
  case $1 in
  byte) printf "\\x$3" | dd of="$work/copy/customers.bin" bs=1 seek="$2" conv=notrunc 2>/dev/null ;;
  value) sed -i "s/\"$2\"/\"$3\"/" "$work/copy/customers.json" ;;
  esac
}
while read -r kind at what; do
  corrupted "$kind" "$at" "$what"
  run demo --data "$work/copy"
  [[ $status == 1 ]] || fail "$kind $at $what: status $status, expected 1"
  [[ $(cat "$work/err") == "bsconv: demo: 1 of 5 records differ from customers.json" ]] ||
    fail "$kind $at $what: stderr: $(cat "$work/err")"
  expect_lines "$work/out"
done <<'EOF'
byte 46 09
 record 2: balance is -97.05 in customers.bin, -87.05 in customers.json
 record 2: balance re-encodes to 000008705D, customers.bin has 000009705D
 record 1: 5 values as in customers.json; 30 bytes re-encoded, identical

byte 48 57
 record 2: balance does not decode: 0xC0001581 CPI Converter Input Data Invalid [packed decimal, no sign found ] [0x0000087057]
 record 2: balance re-encodes to 000008705D, customers.bin has 0000087057
 2 Becker -250 (invalid) -3 -6.25E-2

byte 0 C1
 record 1: name is Alvarez in customers.bin, Álvarez in customers.json
 record 1: name re-encodes to 6593A5819985A9404040, customers.bin has C193A5819985A9404040

value 1.0E2 -1.0E2
 record 5: rate is 1.0E2 in customers.bin, -1.0E2 in customers.json
 record 5: rate re-encodes to C2640000, customers.bin has 42640000

value Chen Chen-Lindqvist
 record 3: name in customers.json does not encode: longer than 10 bytes

EOF

head -c 100 "$data/customers.bin" >"$work/copy/customers.bin"
run demo --data "$work/copy"
[[ $status == 1 ]] || fail "short customers.bin: status $status"
[[ $(cat "$work/err") == "bsconv: demo: customers.bin holds 100 bytes, not the 5 records of 30 bytes in customers.json" ]] ||
  fail "short customers.bin: $(cat "$work/err")"
echo "bsconv demo: all checks passed"
