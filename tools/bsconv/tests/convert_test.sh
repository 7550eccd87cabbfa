#!/usr/bin/env bash
# bsconv convert and codepages, driven as a user drives them: known text both ways and in both
# UTF-16 byte orders, characters cut by the 64 KiB pieces, a multi-megabyte round trip, characters
# that cannot be converted, usage errors. Stops at the first output that differs.
set -uo pipefail
bsconv=$1
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

fail() {
  echo "FAIL: $*" >&2
  exit 1
}
bytes() { printf "$(sed 's/../\\x&/g' <<<"$1")"; }
hex() { od -An -v -tx1 | tr -d ' \n' | tr a-f A-F; }
repeat() { yes "$1" | head -n "$2" | tr -d '\n'; } # TEXT COUNT, for text without NUL bytes

# Runs convert on stdin file $1 with the rest as arguments; leaves out, err and status.
run() {
  local input=$1
  shift
  "$bsconv" convert "$@" <"$input" >"$work/out" 2>"$work/err"
  status=$?
}

# input hex -> output hex
while read -r input expected args; do
  bytes "$input" >"$work/in"
  run "$work/in" $args
  [[ $status == 0 ]] || fail "convert $args on $input: status $status: $(cat "$work/err")"
  actual=$(hex <"$work/out")
  [[ $actual == "$expected" ]] || fail "convert $args on $input: got $actual, expected $expected"
done <<'EOF'
C885939396 48656C6C6F --from 37 --to 1208
48656C6C6F C885939396 --from 1208 --to 37
C1F0 00410030 --from 37 --to 1200
C1F0 41003000 --from 37 --to 1200 --to-byte-order little
00410030 C1F0 --from 1200 --to 37
41003000 C1F0 --from 1200 --from-byte-order little --to 37
41C3A9E282ACF09F9880 004100E920ACD83DDE00 --from 1208 --to 1200
41C3A9E282ACF09F9880 4100E900AC203DD800DE --from 1208 --to 13488 --to-byte-order little
004100E920ACD83DDE00 41C3A9E282ACF09F9880 --from 17584 --to 1208
4100E900AC203DD800DE 41C3A9E282ACF09F9880 --from 1200 --from-byte-order little --to 1208
D83DDE00 3DD800DE --from 1200 --to 1200 --to-byte-order little
3F 1A --from 37 --to 1208
1A 3F --from 1208 --to 37
EFBFBD FFFD --from 1208 --to 1200
C10E45410FC1 41E4B88041 --from 930 --to 1208
41FF42 C13FC2 --from 1208 --to 37 --substitute
41E282AC42 C13FC2 --from 1208 --to 37 --substitute
F09F9880 3F --from 1208 --to 37 --substitute
41FF42 0041FFFD0042 --from 1208 --to 1200 --substitute
0041D800 0041FFFD --from 1200 --to 1200 --substitute
EOF

# Empty input gives empty output.
run /dev/null --from 37 --to 1208
[[ $status == 0 && ! -s $work/out ]] || fail "empty input: status $status"

# Characters cut by the end of the first 64 KiB piece: every split of a 4-byte UTF-8 character, a
# UTF-16 surrogate pair in both byte orders, a double-byte run in mixed EBCDIC starting on an even
# and an odd offset, and Shift-JIS.
for before in 65533 65534 65535; do
  { repeat a "$before"; bytes F09F9880; } >"$work/in"
  run "$work/in" --from 1208 --to 1200
  [[ $status == 0 && $(tail -c 6 "$work/out" | hex) == 0061D83DDE00 &&
    $(stat -c %s "$work/out") == $((2 * before + 4)) ]] || fail "UTF-8 cut after $before bytes"
done
{ repeat A 32767 | sed 's/A/\x00A/g'; bytes D83DDE00; } >"$work/in"
run "$work/in" --from 1200 --to 1208
[[ $status == 0 && $(tail -c 5 "$work/out" | hex) == 41F09F9880 ]] || fail "UTF-16BE pair cut"
{ repeat A 32767 | sed 's/A/A\x00/g'; bytes 3DD800DE; } >"$work/in"
run "$work/in" --from 1200 --from-byte-order little --to 1208
[[ $status == 0 && $(tail -c 5 "$work/out" | hex) == 41F09F9880 ]] || fail "UTF-16LE pair cut"
for lead in C10E 0E; do
  { bytes "$lead"; repeat EA 40000; bytes 0FC1; } >"$work/in" # 0x45 0x41 is U+4E00
  { [[ $lead == C10E ]] && printf A; repeat 一 40000; printf A; } >"$work/expected"
  run "$work/in" --from 930 --to 1208
  [[ $status == 0 ]] && cmp -s "$work/out" "$work/expected" || fail "mixed EBCDIC cut ($lead)"
  # Back to mixed EBCDIC: the double-byte run cut by the pieces comes out whole.
  run "$work/expected" --from 1208 --to 930
  [[ $status == 0 ]] && cmp -s "$work/out" "$work/in" || fail "mixed EBCDIC written in pieces ($lead)"
done
{ printf '\n'; repeat $'\x82\xa0' 40000; } >"$work/in" # U+3042 in Shift-JIS
{ printf '\n'; repeat あ 40000; } >"$work/expected"
run "$work/in" --from 943 --to 1208
[[ $status == 0 ]] && cmp -s "$work/out" "$work/expected" || fail "Shift-JIS cut"

# A multi-megabyte round trip returns the original bytes: every EBCDIC byte and some text,
# doubled up to 4.3 MB.
{ for ((b = 0; b < 256; b++)); do printf "\\x$(printf %02x $b)"; done; bytes C885939396406B; } \
  >"$work/big.ebcdic"
for _ in $(seq 14); do cat "$work/big.ebcdic" "$work/big.ebcdic" >"$work/twice" &&
  mv "$work/twice" "$work/big.ebcdic"; done
"$bsconv" convert --from 37 --to 1208 <"$work/big.ebcdic" >"$work/big.utf8" &&
  "$bsconv" convert --from 1208 --to 37 <"$work/big.utf8" >"$work/back" &&
  cmp -s "$work/big.ebcdic" "$work/back" || fail "EBCDIC -> UTF-8 -> EBCDIC round trip"
"$bsconv" convert --from 37 --to 1200 --to-byte-order little <"$work/big.ebcdic" |
  "$bsconv" convert --from 1200 --from-byte-order little --to 37 >"$work/back" &&
  cmp -s "$work/big.ebcdic" "$work/back" || fail "EBCDIC -> UTF-16LE -> EBCDIC round trip"

# Failures: status 1, one line naming the byte offset; the pieces before it are written.
invalid="bsconv: 0xC0001581 CPI Converter Input Data Invalid"
while IFS='|' read -r input args expected; do
  bytes "$input" >"$work/in"
  run "$work/in" $args
  [[ $status == 1 && $(cat "$work/err") == "$expected" ]] ||
    fail "convert $args on $input: status $status, stderr $(cat "$work/err")"
done <<EOF
41E282AC42|--from 1208 --to 37|$invalid [byte offset 1] [U+20AC] [no mapping to CCSID 37]
4142F09F9880|--from 1208 --to 37|$invalid [byte offset 2] [U+1F600] [no mapping to CCSID 37]
41FF42|--from 1208 --to 1200|$invalid [byte offset 1] [0xFF] [not a character of CCSID 1208]
41E282|--from 1208 --to 1200|$invalid [byte offset 1] [0xE282] [not a character of CCSID 1208]
0041D800|--from 1200 --to 1208|$invalid [byte offset 2] [0xD800] [not a character of CCSID 1200]
C10EFFFF0F|--from 930 --to 1208|$invalid [byte offset 2] [0xFFFF] [not a character of CCSID 930]
41|--from 99 --to 1208|bsconv: 0xC0000852 Error creating convertor [99] [ibm-99]
EOF
{ repeat a 70000; bytes FF; } >"$work/in"
run "$work/in" --from 1208 --to 37
[[ $status == 1 && $(cat "$work/err") == "$invalid [byte offset 70000] [0xFF] [not a character of CCSID 1208]" &&
  $(stat -c %s "$work/out") == 65536 ]] || fail "failure in the second piece: $(cat "$work/err")"
{ bytes 0E; repeat EA 40000; bytes 4540; } >"$work/in"
run "$work/in" --from 930 --to 1208
[[ $status == 1 && $(cat "$work/err") == "$invalid [byte offset 80001] [0x45] [not a character of CCSID 930]" ]] ||
  fail "failure after a carried double-byte run: $(cat "$work/err")"

# Usage errors: status 2, nothing written. Those found after parsing print one "bsconv:" line.
while IFS='|' read -r args expected; do
  "$bsconv" convert $args </dev/null >"$work/out" 2>"$work/err"
  status=$?
  [[ $status == 2 && ! -s $work/out ]] || fail "convert $args: status $status"
  [[ -z $expected || $(cat "$work/err") == "$expected" ]] || fail "convert $args: $(cat "$work/err")"
done <<'EOF'
--from 37|
--to 37|
--from 37 --to 1208 --from-byte-order middle|
--from 0 --to 1208|
--from 37 --to 65536|
--from 37 --to 1208 extra|
--from 37 --to 1208 --from-byte-order little|bsconv: --from-byte-order applies only to the UTF-16 CCSIDs 1200, 13488 and 17584
--from 1208 --to 1208 --to-byte-order big|bsconv: --to-byte-order applies only to the UTF-16 CCSIDs 1200, 13488 and 17584
--from 1212 --to 1208|bsconv: CCSID 1212 (SCSU) keeps state from one character to the next and cannot be converted piece by piece
--from 37 --to 1204|bsconv: CCSID 1204 (UTF-16) keeps state from one character to the next and cannot be converted piece by piece
EOF

# codepages: "CCSID name" lines in CCSID order, the UTF-16 CCSIDs among them.
"$bsconv" codepages >"$work/out" || fail "codepages: status $?"
for line in "37 ibm-37_P100-1995" "1200 UTF-16BE" "1208 UTF-8" "13488 UTF-16BE" "17584 UTF-16BE"; do
  grep -qx "$line" "$work/out" || fail "codepages lacks \"$line\""
done
grep -vqE '^[0-9]+ [^ ]+$' "$work/out" && fail "codepages: a line is not \"CCSID name\""
cut -d' ' -f1 "$work/out" | sort -nc || fail "codepages: not in CCSID order"

for command in convert codepages; do
  "$bsconv" "$command" --help | grep -q '^Example:' || fail "$command --help has no example"
done
echo "convert tests passed"
