#!/usr/bin/env bash
# Proves that the examples in the documentation are what the project really prints and holds.
#
#   bash tests/docs/check_examples.sh SOURCE_DIR BSCONV [PROGRAM...]
#
# SOURCE_DIR is the repository root; BSCONV and each PROGRAM are built programs (the examples). The
# script reads README.md and every docs/**/*.md. In each fenced code block:
#   - a line "$ COMMAND" is an example: COMMAND must start with "bsconv " or be "printf ... |
#     bsconv ...", and the lines after it, up to the next "$ " line or the end of the block, are
#     exactly what it prints on standard output and standard error together;
#   - a block right after a line "<!-- output of: COMMAND -->" is the whole output of COMMAND,
#     which starts with "bsconv" or the name of a PROGRAM (README.md must have such a block for
#     "bsconv demo");
#   - a block right after a line "<!-- source: PATH -->" is the whole text of that file of the
#     repository, so that code shown is code that is built.
# Other blocks (build commands, C++ fragments) are left alone. Each command runs with bash in an
# empty temporary directory, with "bsconv" and the programs on PATH under their own names, the C
# locale and empty standard input; its exit status is not checked (failures print too).
#
# Every example is checked; each that differs is reported with its file, line, command and a
# unified diff. Exit status: 0 when all match, 1 when any differs, 2 on a usage error. It needs
# no network and no root, and writes only to a temporary directory that it removes.
set -uo pipefail

if [[ $# -lt 2 ]]; then
  echo "usage: bash $0 SOURCE_DIR BSCONV [PROGRAM...]" >&2
  exit 2
fi
for program in "${@:2}"; do
  if [[ ! -f $program || ! -x $program ]]; then
    echo "check_examples: not an executable program: $program" >&2
    exit 2
  fi
done
if [[ ! -f $1/README.md ]]; then
  echo "check_examples: no README.md in $1" >&2
  exit 2
fi
source_dir=$(cd "$1" && pwd -P)

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
mkdir "$work/bin"
# Symbolic links rather than wrappers, so that the programs see their own names (bsconv's --help
# prints it) and find their libraries as they would anyway.
ln -s "$(realpath -- "$2")" "$work/bin/bsconv"
program_names=(bsconv)
for program in "${@:3}"; do
  ln -s "$(realpath -- "$program")" "$work/bin/$(basename -- "$program")"
  program_names+=("$(basename -- "$program")")
done

checked=0
failed=0
demo_checked=0

# What the documentation may ask this script to run.
is_example_command() {
  [[ $1 =~ ^bsconv( |$) || $1 =~ ^printf\ .*\|\ *bsconv( |$) ]]
}
is_output_command() {
  local name
  for name in "${program_names[@]}"; do
    [[ $1 == "$name" || $1 == "$name "* ]] && return 0
  done
  return 1
}

report() { # FILE LINE COMMAND MESSAGE
  failed=$((failed + 1))
  printf '\nFAIL %s:%s\n  $ %s\n%s\n' "$1" "$2" "$3" "$4"
}

# run_example FILE LINE COMMAND: runs COMMAND and compares its output with $work/expected.
run_example() {
  local file=$1 line=$2 command=$3
  checked=$((checked + 1))
  rm -rf "$work/run" && mkdir "$work/run"
  (cd "$work/run" && PATH="$work/bin:$PATH" LC_ALL=C timeout 60 bash -c "$command") \
    </dev/null >"$work/actual" 2>&1
  if ! cmp -s "$work/expected" "$work/actual"; then
    report "$file" "$line" "$command" \
      "$(diff -u --label "shown in $file" --label "printed" "$work/expected" "$work/actual")"
  fi
}

# check_file FILE: every example of one Markdown file.
check_file() {
  local file=$1 path=$source_dir/$1
  local number=0 line in_block=0
  local marker="" marker_line=0 marker_kind="" output_of="" output_line=0 source_of=""
  local command="" command_line=0
  finish_command() {
    if [[ -n $command ]]; then
      if is_example_command "$command"; then
        run_example "$file" "$command_line" "$command"
      else
        report "$file" "$command_line" "$command" \
          "  not an example this script runs: it must start with \"bsconv \" or \"printf ... | bsconv\""
      fi
    fi
    command=""
  }
  while IFS= read -r line || [[ -n $line ]]; do
    number=$((number + 1))
    if ((!in_block)); then
      if [[ $line =~ ^\<\!--\ (output\ of|source):\ (.+)\ --\>$ ]]; then
        marker_kind=${BASH_REMATCH[1]}
        marker=${BASH_REMATCH[2]}
        marker_line=$number
        continue
      fi
      if [[ $line =~ ^\`\`\` ]]; then
        in_block=1
        output_of="" source_of=""
        if [[ $marker_kind == source ]]; then source_of=$marker; else output_of=$marker; fi
        output_line=$marker_line
        command=""
        : >"$work/expected"
      elif [[ -n $marker ]]; then
        report "$file" "$marker_line" "$marker" "  the marker is not right before a code block"
      fi
      marker=""
      continue
    fi
    if [[ $line =~ ^\`\`\`[[:space:]]*$ ]]; then
      in_block=0
      if [[ -n $source_of ]]; then
        checked=$((checked + 1))
        if ! cmp -s "$work/expected" "$source_dir/$source_of"; then
          report "$file" "$output_line" "$source_of" "$(diff -u --label "shown in $file" \
            --label "$source_of" "$work/expected" "$source_dir/$source_of" 2>&1)"
        fi
      elif [[ -n $output_of ]]; then
        if is_output_command "$output_of"; then
          run_example "$file" "$output_line" "$output_of"
          [[ $file == README.md && $output_of == "bsconv demo" ]] && demo_checked=1
        else
          report "$file" "$output_line" "$output_of" \
            "  not a program this script runs: it must start with one of: ${program_names[*]}"
        fi
      else
        finish_command
      fi
      continue
    fi
    if [[ -n $output_of || -n $source_of ]]; then
      printf '%s\n' "$line" >>"$work/expected"
    elif [[ $line == '$ '* ]]; then
      finish_command
      command=${line#'$ '}
      command_line=$number
      : >"$work/expected"
    elif [[ -n $command ]]; then
      printf '%s\n' "$line" >>"$work/expected"
    fi
  done <"$path"
  if ((in_block)); then
    report "$file" "$number" "" "  a code block is not closed"
  fi
}

files=(README.md)
if [[ -d $source_dir/docs ]]; then
  while IFS= read -r doc; do
    files+=("${doc#"$source_dir"/}")
  done < <(find "$source_dir/docs" -name '*.md' -type f | LC_ALL=C sort)
fi
for file in "${files[@]}"; do
  check_file "$file"
done

((demo_checked)) || report README.md - "bsconv demo" \
  "  README.md has no block marked <!-- output of: bsconv demo -->"

if ((failed > 0)); then
  printf '\n%d problems: %d examples checked in %d files, not all as the programs print them\n' \
    "$failed" "$checked" "${#files[@]}"
  exit 1
fi
printf 'checked %d examples in %d files: all match what the programs print\n' \
  "$checked" "${#files[@]}"
