#!/usr/bin/env bash
# bsconv decode and encode as a user drives them: known fields of every form in both directions
# and byte orders, and the exit status and message of bad input. Stops at the first difference.
set -euo pipefail

bsconv=$1
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT

fail() {
  printf 'FAIL: bsconv %s\n  expected: %s\n  got:      %s\n' "$1" "$2" "$3" >&2
  exit 1
}

# run INPUT ARGS...: runs the tool with INPUT (printf format) on standard input and leaves its
# exit status in $status, standard output in $out, standard error in $err.
run() {
  local input=$1
  shift
  status=0
  printf "$input" | "$bsconv" "$@" >"$scratch/out" 2>"$scratch/err" || status=$?
  out=$(tr -d '\0' <"$scratch/out")  # raw output may hold NULs
  err=$(cat "$scratch/err")
}

# expect STATUS EXPECTED INPUT ARGS...: EXPECTED is standard output for status 0 and standard
# error otherwise, "\n" between lines.
expect() {
  local want_status=$1 want
  want=$(printf '%b' "$2")
  shift 2
  run "$@"
  shift
  local got=$err
  [[ $want_status == 0 ]] && got=$out
  [[ $status == "$want_status" && $got == "$want" ]] || fail "$*" "[$want_status] $want" "[$status] $got"
  [[ $status != 0 || -z $err ]] || fail "$*" "nothing on standard error" "$err"
}

# One check a line: status | expected output (stdout for 0, stderr otherwise) | arguments, quoted
# as in the shell.
while IFS='|' read -r status expected arguments; do
  [[ -z $status || $status == \#* ]] && continue
  eval "args=($arguments)"
  expect "${status// /}" "$(printf '%s' "$expected" | sed 's/^ *//; s/ *$//')" "" "${args[@]}"
done <<'CHECKS'
# int
0 | 1234                 | decode int 000004D2
0 | 1234                 | decode int --byte-order little D2040000
0 | -2\n-128             | decode int FFFE 80
0 | 65534                | decode int --unsigned FFFE
0 | 18446744073709551615 | decode int --unsigned FFFFFFFFFFFFFFFF
0 | -0.02                | decode int --scale 2 FFFE
0 | 655.35               | decode int --unsigned --scale 2 FFFF
0 | 000004D2             | encode int --size 4 1234
0 | D2040000             | encode int --size 4 --byte-order little 1234
0 | FFFE                 | encode int --size 2 -2
0 | 000004D2             | encode int --size 4 --scale 2 12.349
0 | FFFF                 | encode int --size 2 --unsigned 65535
1 | bsconv: 0xC0001583 Overflow converting a PWFInt64 to PWFUInt16 [integer] [2-byte integer] [2] | encode int --size 2 --unsigned 65536
1 | bsconv: 0xC000157E CPI Internal Error [Invalid integer size: ] [3] | decode int 010203
2 | --size: 3 not in {1,2,4,8}\nRun with --help for more information. | encode int --size 3 1
# packed
0 | 123.45               | decode packed --scale 2 12345C
0 | -0.05\n12.34         | decode packed --scale 2 5D 0x01234F
0 | 123                  | decode packed --unsigned 00123F
0 | 123.45               | decode packed --scale 2 --byte-order little 5C3412
0 | 12345D               | encode packed --size 3 --scale 2 -- -123.45
0 | 5C3412               | encode packed --size 3 --byte-order little 12345
0 | 00123F               | encode packed --size 3 --unsigned 123
0 | 00001C\n00002D       | encode packed --size 3 1 -- -2
1 | bsconv: 0xC0001581 CPI Converter Input Data Invalid [packed decimal, no sign found ] [0x123456] | decode packed 123456
1 | bsconv: 0xC0001581 CPI Converter Input Data Invalid [packed decimal, negative sign found on unsigned data ] [0x12345d] | decode packed --unsigned 12345D
1 | bsconv: 0xC0001583 CPI InputData Too Long [packed decimal] [decimal] [2] | encode packed --size 2 12345
# tlog-packed
0 | 123                  | decode tlog-packed F123
0 | -123                 | decode tlog-packed 00D123
0 | 123                  | decode tlog-packed --byte-order little 23F1
0 | 00D123               | encode tlog-packed --size 3 -- -123
0 | 23D100               | encode tlog-packed --size 3 --byte-order little -- -123
1 | bsconv: 0xC0001581 CPI Converter Input Data Invalid [TLOG packed decimal] [0x12ad] | decode tlog-packed 12AD
# zoned
0 | -123.45              | decode zoned --scale 2 F1F2F3F4D5
0 | -123                 | decode zoned --sign leading D1F2F3
0 | -12                  | decode zoned --sign trailing-separate F1F260
0 | -123                 | decode zoned --ccsid 819 313273
0 | -123                 | decode zoned --ccsid 819 --ebcdic-overpunch 31324C
0 | F1F2F3F4D5           | encode zoned --size 5 --scale 2 -- -123.45
0 | 2D30303432           | encode zoned --size 5 --ccsid 819 --sign leading-separate -- -42
0 | 31324C               | encode zoned --size 3 --ccsid 819 --ebcdic-overpunch -- -123
0 | F0F4F2               | encode zoned --size 3 --sign none 42
1 | bsconv: 0xC0001581 CPI Converter Input Data Invalid [external decimal] [0xc1c2] | decode zoned C1C2
1 | bsconv: 0xC0001582 CPI Converter Input Data Out Of Bounds [unsigned external decimal] [signed number] | encode zoned --size 3 --sign none -- -1
# float
0 | 1.0E0\n-1.0E2        | decode float --format hfp 41100000 C2640000
0 | 1.0E0                | decode float 3F800000
0 | 1.0E0                | decode float --byte-order little 0000803F
0 | 1.5E2                | decode float 4062C00000000000
0 | 4062C00000000000     | encode float --size 8 1.5E2
0 | 40199999             | encode float --size 4 --format hfp 0.1
0 | 0000C03F             | encode float --size 4 --byte-order little 1.5
1 | bsconv: 0xC000157E CPI Internal Error [Invalid float size: ] [2] | decode float 3F80
1 | bsconv: 0xC0001593 Exception caught trying to convert a logical string to a PWFData object [CPI Converter Input Data Invalid] [double] [abc] | encode float --size 4 abc
# text
0 | Hello                | decode text C885939396
0 | Hi                   | decode text --ccsid 1200 00480069
0 | Hi                   | decode text --ccsid 1200 --byte-order little 48006900
0 | C885939396404040     | encode text --size 8 Hello
0 | C885939396           | encode text Hello
0 | 48006900             | encode text --ccsid 1200 --byte-order little Hi
0 | E282AC               | encode text --ccsid 1208 €
0 | 3F                   | encode text €
1 | bsconv: 0xC000157E error convering from unicode [15] | encode text --size 3 Hello
1 | bsconv: 0xC0000852 Error creating convertor [99999] [ibm-99999] | decode text --ccsid 99999 C1
# interval
0 | P1DT12H\n-PT0.5S     | decode interval -- PT36H -PT0.5S
0 | PT1H30M              | encode interval P0DT90M
1 | bsconv: 0xC0001581 CPI Converter Input Data Invalid [interval] [P1X] | decode interval P1X
# base64
0 | 4D616E               | decode base64 TWFu
0 | TWE=                 | encode base64 4D61
1 | bsconv: 0xC000157E Input data incomplete | decode base64 TQ=
2 | bsconv: odd number of hexadecimal digits: 4D6 | encode base64 4D6
# usage errors
2 | bsconv: decode needs a form: int, packed, tlog-packed, zoned, float, text, interval, base64 | decode
2 | bsconv: unknown form foo: the forms are int, packed, tlog-packed, zoned, float, text, interval, base64 | encode foo 12
2 | bsconv: --scale: the options go after the form (bsconv decode FORM [options]) | decode --scale 2 packed 12345C
2 | bsconv: decode packed does not take --ccsid (bsconv decode packed --help lists its options) | decode packed --ccsid 500 12345C
2 | --size is required\nRun with --help for more information. | encode packed 1
2 | --byte-order: middle not in {big,little}\nRun with --help for more information. | decode packed --byte-order middle 1C
2 | bsconv: not hexadecimal: 12345G | decode packed 12345G
2 | bsconv: no fields: give them as arguments, or --length N to read N-byte fields from standard input | decode packed
2 | bsconv: field 0102 has 2 bytes, not the 4 of --size | decode int --size 4 0102
2 | bsconv: --length reads the fields from standard input: give none as arguments | decode packed --length 2 0102
CHECKS

# Raw fields from standard input, and raw output.
expect 0 '123.45\n-0.01' '\x12\x34\x5c\x00\x00\x1d' decode packed --length 3 --scale 2
expect 0 'PT1H\nPT2H' 'PT1HPT2H' decode interval --length 4
expect 2 'bsconv: standard input ends 2 bytes into a 3-byte field' '\x12\x34\x5c\x00\x00' \
  decode packed --length 3
run '' encode packed --size 2 --raw 1 -- -2
[[ $(od -An -tx1 "$scratch/out" | tr -d ' \n') == 001c002d ]] || fail "encode --raw" 001c002d "$(od -An -tx1 "$scratch/out")"

# One JSON document, and none at all when a field fails.
expect 0 '[\n  {\n    "hex": "12345C",\n    "value": "123.45"\n  }\n]' '' decode packed --json --scale 2 12345C
expect 0 '[\n  {\n    "hex": "54574675",\n    "text": "TWFu",\n    "value": "4D616E"\n  }\n]' '' decode base64 --json TWFu
expect 0 '[]' '' decode packed --json --length 3
run '' decode packed --json 1C 12
[[ $status == 1 && -z $out ]] || fail "decode packed --json 1C 12" "[1] no output" "[$status] $out"

# Help: exit 0 and an example for each direction and form, and every example does what it says.
for direction in decode encode; do
  for form in int packed tlog-packed zoned float text interval base64; do
    run '' "$direction" "$form" --help
    [[ $status == 0 && $out == *"Example:"*"bsconv $direction $form"* ]] ||
      fail "$direction $form --help" "an example" "[$status] $out"
  done
  run '' "$direction" --help
  while IFS= read -r example; do
    eval "args=(${example%%  ->  *})"
    expect 0 "${example##*  ->  }" '' "${args[@]}"
  done < <(sed -n 's/^  bsconv //p' <<<"$out")
done

echo "bsconv fields: all checks passed"
