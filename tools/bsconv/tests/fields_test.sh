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
0 | FFFFFFFFFFFFFFFF     | encode int --size 8 --unsigned 18446744073709551615
0 | 8000000000000000     | encode int --size 8 --unsigned 9223372036854775808
0 | 0000000000000001     | encode int --size 8 --unsigned 1
0 | FFFFFFFFFFFFFFFF     | encode int --size 8 --unsigned --byte-order little --scale 1 1844674407370955161.59
1 | bsconv: 0xC0001582 CPI Converter Input Data Out Of Bounds [string] [18446744073709551616] [8-byte integer] | encode int --size 8 --unsigned 18446744073709551616
1 | bsconv: 0xC0001582 CPI Converter Input Data Out Of Bounds [string] [123456789012345678901] [8-byte integer] | encode int --size 8 --unsigned 123456789012345678901
1 | bsconv: 0xC0001583 Overflow converting a PWFInt64 to PWFUInt64 [integer] [8-byte integer] [8] | encode int --size 8 --unsigned -- -1
1 | bsconv: 0xC0001582 CPI Converter Input Data Out Of Bounds [string] [9223372036854775808] [8-byte integer] | encode int --size 8 9223372036854775808
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
0 | 40199999             | encode float --size 4 --format hfp --runtime-hfp 0.1
0 | 4019999A             | encode float --size 4 --format hfp 0.1
0 | 401999999999999A     | encode float --size 8 --format hfp 0.1
0 | 9A9919C0             | encode float --size 4 --format hfp --byte-order little -- -0.1
0 | 2.0E0                | decode float --format hfp 4120000000000001
0 | 2.0000000000000004E0 | decode float --format hfp --runtime-hfp 4120000000000001
0 | 1.6777215E7\n5.397605346934028E-79\n-0.0E0 | decode float --format hfp 46FFFFFF 00100000 80000000
0 | 1.0E0                | decode float --format hfp --byte-order little 0000000000001041
0 | 7FFFFFFF             | encode float --size 4 --format hfp 7.2370051459731155E75
1 | bsconv: 0xC0001582 CPI Converter Input Data Out Of Bounds [double] [7.237005577332262e+75] | encode float --size 8 --format hfp 7.237005577332262E75
1 | bsconv: 0xC0001581 CPI Converter Input Data Invalid [double] [nan] | encode float --size 8 --format hfp NaN
2 | bsconv: --runtime-hfp goes with --format hfp | encode float --size 4 --runtime-hfp 1
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
# datetime: text of a pattern. The expected values are Python's (datetime, zoneinfo, codecs).
0 | 2023-04-09           | decode datetime --pattern yyyyMMdd F2F0F2F3F0F4F0F9
0 | 2023-04-09T13:05:00  | decode datetime --pattern 'dd.MM.yy HH:mm' --ccsid 819 30392E30342E32332031333A3035
0 | 2052-01-01\n1953-01-01 | decode datetime --pattern yy F5F2 F5F3
0 | 1923-04-09           | decode datetime --pattern yyMMdd --century-window 20 F2F3F0F4F0F9
0 | 13:05:09.123456789   | decode datetime --pattern HH:mm:ss.SSSSSSSSS --ccsid 819 31333A30353A30392E313233343536373839
0 | 2023-04-09T13:05:00+02:00 | decode datetime --pattern 'EEE, d MMM yyyy HH:mm Z' --ccsid 819 53756E2C20392041707220323032332031333A3035202B30323030
0 | 2023-04-09           | decode datetime --pattern 'd MMMM y' --locale fr_FR --ccsid 819 3920617672696C2032303233
0 | 2023-04-09T13:05:09.5+05:30 | decode datetime --pattern I --ccsid 819 323032332D30342D30395431333A30353A30392E352B30353A3330
0 | 2023-04-09           | decode datetime --pattern yyyyMMdd F2F0F2F3F0F4F0F94040
0 | 2023-04-09           | decode datetime --pattern yyyyMMdd --ccsid 1200 --byte-order little 32003000320033003000340030003900
0 | 2023-03-02           | decode datetime --pattern yyyyMMdd --lenient F2F0F2F3F0F2F3F0
0 | 2023-04-09           | decode datetime --pattern yyyyMMdd --lenient F2F0F2F3F0F4F0F9C1
1 | bsconv: 0xC00015A9 CPI Invalid Date entered [20230230] | decode datetime --pattern yyyyMMdd F2F0F2F3F0F2F3F0
1 | bsconv: 0xC00015A4 CPI Unable to parse datetime internally [ABC] [yyyyMMdd] [U_PARSE_ERROR] | decode datetime --pattern yyyyMMdd C1C2C3
1 | bsconv: 0xC00015A4 CPI Unable to parse datetime internally [20230409A] [yyyyMMdd] [U_PARSE_ERROR] | decode datetime --pattern yyyyMMdd F2F0F2F3F0F4F0F9C1
1 | bsconv: 0xC00015A8 CPI String invalid format for pattern 'I'. [2023-04-09 13:05] | decode datetime --pattern I --ccsid 819 323032332D30342D30392031333A3035
1 | bsconv: 0xC0001599 Invalid timezone [Mars/Base] | decode datetime --pattern yyyyMMdd --timezone Mars/Base F2F0F2F3F0F4F0F9
1 | bsconv: 0xC000158B CPI Datetime invalid Century Window [100] | decode datetime --pattern yyMMdd --century-window 100 F2F3F0F4F0F9
0 | F2F0F2F3F0F4F0F9     | encode datetime --pattern yyyyMMdd 2023-04-09
0 | F2F0F2F3F0F4F0F94040 | encode datetime --pattern yyyyMMdd --size 10 2023-04-09
0 | 31333A30353A30392E313233343536373839 | encode datetime --pattern HH:mm:ss.SSSSSSSSS --ccsid 819 13:05:09.123456789
0 | 323032332D30342D30395431333A30353A30392E3132333435363738392B30353A3330 | encode datetime --pattern I --ccsid 819 2023-04-09T13:05:09.123456789+05:30
0 | 323032332D30342D30392031333A30352B30323A3030 | encode datetime --pattern 'yyyy-MM-dd HH:mmXXX' --ccsid 819 --timezone Europe/London 2023-04-09T13:05:00+02:00
0 | 3920617672696C2032303233 | encode datetime --pattern 'd MMMM y' --locale fr_FR --ccsid 819 2023-04-09
0 | F2F0F2F3F0F3F0F2     | encode datetime --pattern yyyyMMdd --lenient 2023-02-30
1 | bsconv: 0xC00015A9 CPI Invalid Date entered [year = 2023, month = 2, day = 30, hour = -2147483648, minute = -2147483648, second = -2147483648, subsecond = -2147483648, scale = -2147483648, timezone = -2147483648, localTimeZone = 0] | encode datetime --pattern yyyyMMdd 2023-02-30
1 | bsconv: 0xC00015A3 CPI Unable to format datetime internally [HH:mm] [year = 2023, month = 4, day = 9, hour = -2147483648, minute = -2147483648, second = -2147483648, subsecond = -2147483648, scale = -2147483648, timezone = -2147483648, localTimeZone = 0] | encode datetime --pattern HH:mm 2023-04-09
1 | bsconv: 0xC0001593 Exception caught trying to convert a logical string to a PWFData object [CPI Converter Input Data Invalid] [date-time] [2023-13-01] | encode datetime --pattern yyyyMMdd 2023-13-01
1 | bsconv: 0xC000157E error convering from unicode [15] | encode datetime --pattern yyyyMMdd --size 4 2023-04-09
# datetime: seconds and milliseconds since an epoch
0 | 2023-04-09T13:05:00.000000Z\n1969-12-31T23:59:59.000000Z | decode datetime --seconds 6432B7FC FFFFFFFF
0 | 2023-04-09T13:05:00.000000Z | decode datetime --seconds --size 8 --byte-order little FCB7326400000000
0 | 2023-04-09T13:05:00.000000Z | decode datetime --milliseconds 00000187661EB060
0 | 2023-04-09T15:05:00.000000+02:00\n2023-01-01T13:00:00.000000+01:00 | decode datetime --seconds --timezone Europe/Paris 6432B7FC 63B175C0
0 | 1999-12-31T23:00:00.000000Z | decode datetime --seconds --epoch 2000-01-01T00:00+01:00 00000000
1 | bsconv: 0xC0001583 Overflow converting a PWFInt64 to PWFInt32 [integer] [4-byte integer] [4] | decode datetime --seconds 0000000100000000
1 | bsconv: 0xC000158C CPI Datetime invalid Epoch [2000-01-01T00:00] | decode datetime --seconds --epoch 2000-01-01T00:00 00000000
1 | bsconv: 0xC000158C CPI Datetime invalid Epoch [2000-01-01T00:00:00+01:00] | decode datetime --seconds --epoch 2000-01-01T00:00:00+01:00 00000000
0 | 6432B7FC             | encode datetime --seconds --size 4 2023-04-09T13:05:00Z
0 | 000000006432B7FC     | encode datetime --seconds --size 8 2023-04-09T13:05:00Z
0 | 00000000\nFFFFFFFF   | encode datetime --seconds --size 4 1969-12-31T23:59:59.5Z 1969-12-31T23:59:59Z
0 | 6432B7FC             | encode datetime --seconds --size 4 --timezone Europe/Paris 2023-04-09T15:05:00
0 | 0000B7FC             | encode datetime --seconds --size 4 13:05
0 | 00000E10             | encode datetime --seconds --size 4 --epoch 2000-01-01T00:00+00:00 2000-01-01T01:00:00Z
0 | 60B01E6687010000     | encode datetime --milliseconds --size 8 --byte-order little 2023-04-09T13:05:00Z
1 | bsconv: 0xC0001583 Overflow converting a PWFInt64 to PWFInt32 [integer] [4-byte integer] [4] | encode datetime --milliseconds --size 4 2023-04-09T13:05:00Z
# datetime: binary field records
0 | 2023-04-09T00:00:00.000000Z | decode datetime --binary-pattern y+1900Md 7B0409
0 | 2023-04-09T13:05:09.123000Z | decode datetime --binary-pattern XyyMdHmsSS 00E70704090D05097B00
0 | 2023-04-09T00:00:00.000000Z | decode datetime --binary-pattern yyyyMd E70700000409
0 | 0231-01-01T00:00:00.000000Z | decode datetime --binary-pattern yyMd E7
0 | 2024-01-01T00:00:00.000000Z | decode datetime --binary-pattern y+1900Md --lenient 7B0D01
1 | bsconv: 0xC00015A9 CPI Invalid Date entered [0x7b0d01] | decode datetime --binary-pattern y+1900Md 7B0D01
1 | bsconv: 0xC0001597 CPI Datetime From Binary Error [y] [3] | decode datetime --binary-pattern yyyMd 00000000
1 | bsconv: 0xC0001597 CPI Datetime From Binary Error [Q] [1] | decode datetime --binary-pattern yyQ 000000
0 | 7B0409               | encode datetime --binary-pattern y+1900Md 2023-04-09
0 | E707040A             | encode datetime --binary-pattern yyMd-1 2023-04-09
0 | 00E70704090D05097B00 | encode datetime --binary-pattern XyyMdHmsSS 2023-04-09T13:05:09.123Z
0 | E70704090000         | encode datetime --binary-pattern yyMd --size 6 2023-04-09
1 | bsconv: 0xC0001598 CPI Datetime To Binary Error [yyMd] [3] | encode datetime --binary-pattern yyMd --size 3 2023-04-09
1 | bsconv: 0xC0001598 CPI Datetime To Binary Error [y] [3] | encode datetime --binary-pattern yyyMd 2023-04-09
1 | bsconv: 0xC0001597 CPI Datetime From Binary Error [Q] [1] | encode datetime --binary-pattern yyQ 2023-04-09
# datetime: packed date-times
0 | 2023-04-09           | decode datetime --packed-pattern yyyyMMdd 020230409F
0 | 2023-04-09           | decode datetime --packed-pattern yyyyMMdd --byte-order little 9F40300202
0 | 2023-04-09           | decode datetime --packed-pattern yyyyMMdd 00020230409F
0 | 0023-04-09           | decode datetime --packed-pattern yyyyMMdd 0230409F
1 | bsconv: 0xC0001581 CPI Converter Input Data Invalid [packed decimal, negative sign found on unsigned data ] [0x020230409d] | decode datetime --packed-pattern yyyyMMdd 020230409D
0 | 020230409F           | encode datetime --packed-pattern yyyyMMdd 2023-04-09
0 | 020230409130500F     | encode datetime --packed-pattern yyyyMMddHHmmss 2023-04-09T13:05:00
0 | 00020230409F         | encode datetime --packed-pattern yyyyMMdd --size 6 2023-04-09
0 | 9F40300202           | encode datetime --packed-pattern yyyyMMdd --byte-order little 2023-04-09
1 | bsconv: 0xC0001583 CPI InputData Too Long [packed decimal] [decimal] [4] | encode datetime --packed-pattern yyyyMMdd --size 4 2023-04-09
# datetime: its options together
2 | bsconv: decode datetime needs exactly one of --pattern, --seconds, --milliseconds, --binary-pattern, --packed-pattern | decode datetime F2F0
2 | bsconv: encode datetime needs exactly one of --pattern, --seconds, --milliseconds, --binary-pattern, --packed-pattern | encode datetime --pattern yyyyMMdd --seconds 2023-04-09
2 | bsconv: decode datetime --seconds does not take --ccsid (it goes with --pattern) | decode datetime --seconds --ccsid 500 00000000
2 | bsconv: decode datetime --pattern does not take --epoch (it goes with --seconds and --milliseconds) | decode datetime --pattern yyyyMMdd --epoch 2000-01-01T00:00+00:00 F2F0
2 | bsconv: encode datetime --binary-pattern does not take --byte-order (it goes with --pattern, --seconds, --milliseconds and --packed-pattern) | encode datetime --binary-pattern yMd --byte-order little 2023-04-09
2 | bsconv: --size: 2 is not 4 or 8, the sizes of --seconds | decode datetime --seconds --size 2 0000
2 | bsconv: field 000000 has 3 bytes, not 4 or 8 | decode datetime --milliseconds 000000
2 | bsconv: encode datetime --seconds needs --size 4 or 8 | encode datetime --seconds 2023-04-09
2 | bsconv: encode datetime does not take --century-window (bsconv encode datetime --help lists its options) | encode datetime --pattern yy --century-window 20 2023-04-09
# usage errors
2 | bsconv: decode needs a form: int, packed, tlog-packed, zoned, float, text, interval, base64, datetime | decode
2 | bsconv: unknown form foo: the forms are int, packed, tlog-packed, zoned, float, text, interval, base64, datetime | encode foo 12
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

# Help: exit 0 and at least one example for each direction and form, every example does what it
# says, and the direction's help shows each form's first example.
for direction in decode encode; do
  declare -A first=()
  for form in int packed tlog-packed zoned float text interval base64 datetime; do
    run '' "$direction" "$form" --help
    [[ $status == 0 && $out == *"Example"*":"*"bsconv $direction $form"* ]] ||
      fail "$direction $form --help" "an example" "[$status] $out"
    examples=$(sed -n 's/^  bsconv //p' <<<"$out")
    first[${examples%%$'\n'*}]=1
    while IFS= read -r example; do
      eval "args=(${example%%  ->  *})"
      expect 0 "${example##*  ->  }" '' "${args[@]}"
    done <<<"$examples"
  done
  run '' "$direction" --help
  while IFS= read -r example; do
    [[ -n ${first[$example]:-} ]] || fail "$direction --help" "a form's first example" "$example"
    unset "first[$example]"
  done < <(sed -n 's/^  bsconv //p' <<<"$out")
  ((${#first[@]} == 0)) || fail "$direction --help" "every form's first example" "${!first[*]}"
  unset first
done

echo "bsconv fields: all checks passed"
