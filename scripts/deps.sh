# Sourced by the project's commands: makes sure the Debian packages the build needs are present,
# installing the missing ones when run as root.

BSUTILS_PACKAGES=(cmake make g++ pkg-config libicu-dev libgtest-dev libbenchmark-dev libcli11-dev
  nlohmann-json3-dev)

# The fuzzer's: clang, libFuzzer's runtime (libclang-rt-14-dev holds libclang_rt.fuzzer for clang
# 14, which Debian 12's clang is) and llvm-14 for llvm-symbolizer, so that sanitizer stacks name
# functions and lines.
BSUTILS_FUZZ_PACKAGES=(cmake make libicu-dev clang libclang-rt-14-dev llvm-14)

ensure_packages() {
  ensure_listed_packages "${BSUTILS_PACKAGES[@]}"
}

ensure_fuzz_packages() {
  ensure_listed_packages "${BSUTILS_FUZZ_PACKAGES[@]}"
}

ensure_listed_packages() {
  local missing=() package
  for package in "$@"; do
    dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q 'install ok installed' ||
      missing+=("$package")
  done
  [ ${#missing[@]} -eq 0 ] && return 0
  if [ "$(id -u)" -ne 0 ]; then
    echo "bsutils needs these Debian packages: ${missing[*]}" >&2
    echo "run this command as root to install them, or: apt-get install ${missing[*]}" >&2
    return 1
  fi
  echo "installing ${missing[*]}"
  export DEBIAN_FRONTEND=noninteractive
  apt-get update -q
  apt-get install -y -q --no-install-recommends "${missing[@]}"
}

# Configures and builds one preset; BSUTILS_WERROR=ON turns warnings into errors.
build_preset() {
  local preset=$1
  shift
  cmake --preset "$preset" -DBSUTILS_WERROR="${BSUTILS_WERROR:-OFF}"
  cmake --build --preset "$preset" --parallel "$(nproc)" "$@"
}
