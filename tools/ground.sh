# shellcheck shell=bash
# What ./run and ./test share; sourced, never run. $root is the top of the tree.

: "${root:?}"

say() { printf '%s\n' "$*" >&2; }

die() {
  say "$@"
  exit 1
}

# Packages of packages.txt that are not installed, one a line.
missing_packages() {
  local wanted
  wanted=$(sed -e 's/#.*//' -e 's/[[:space:]]//g' -e '/^$/d' "$root/packages.txt" | sort)
  # shellcheck disable=SC2086  # one word per package
  comm -23 <(printf '%s\n' "$wanted") \
    <(dpkg-query --show --showformat '${Package} ${db:Status-Status}\n' $wanted 2>/dev/null |
      sed -n 's/ installed$//p' | sort)
}

# Installs what packages.txt names and the system lacks.
install_packages() {
  if ! command -v dpkg-query >/dev/null; then
    say "This is not a Debian system: make sure that what packages.txt names is installed."
    return
  fi
  local missing as_root=()
  mapfile -t missing < <(missing_packages)
  [ ${#missing[@]} -gt 0 ] || return 0
  if [ "$(id -u)" -ne 0 ]; then
    command -v sudo >/dev/null || die "Packages are missing. Install them as root: apt-get install ${missing[*]}"
    as_root=(sudo)
    [ -t 0 ] || as_root+=(--non-interactive)
  fi
  say "Installing packages: ${missing[*]}"
  local log
  log=$(mktemp)
  if ! { "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get -q -y update &&
    "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get -q -y install --no-install-recommends \
      "${missing[@]}"; } </dev/null >"$log" 2>&1; then
    cat "$log" >&2
    rm -f "$log"
    die "The packages could not be installed."
  fi
  rm -f "$log"
}

# build PRESET [TARGET...]: configures and builds quietly; what went wrong is shown. Two builds of one preset wait
# for each other.
build() {
  local preset=$1 directory=$root/build/$1
  shift
  mkdir -p "$directory"
  if command -v ccache >/dev/null; then export CMAKE_CXX_COMPILER_LAUNCHER=ccache; fi
  say "Building $preset ..."
  (
    flock 9
    cd "$root" || exit
    log=$directory/build.log
    cmake --preset "$preset" >"$log" 2>&1 9>&- &&
      cmake --build "$directory" ${1:+--target "$@"} >>"$log" 2>&1 9>&- && exit
    grep -v '^\[[0-9]*/[0-9]*\] ' "$log" >&2
    die "The build of $preset failed; the whole log is $log"
  ) 9>"$directory/.lock"
}
