# shellcheck shell=bash
# What ./run and ./test share; sourced, never run. $root is the top of the tree.

: "${root:?}"

say() { printf '%s\n' "$*" >&2; }

die() {
  say "$@"
  exit 1
}

# The packages of these parts of packages.txt, one a line.
packages_of() {
  local part
  for part; do
    grep -qxF "[$part]" "$root/packages.txt" || die "packages.txt has no part [$part]."
    sed -n "/^\\[$part]\$/,/^\\[/{/^[a-z0-9]/p}" "$root/packages.txt"
  done
}

# Those of them that are not installed, one a line.
missing_packages() {
  local wanted
  wanted=$(packages_of "$@" | sort -u) || return
  # shellcheck disable=SC2086  # one word per package
  comm -23 <(printf '%s\n' "$wanted") \
    <(dpkg-query --show --showformat '${Package} ${db:Status-Status}\n' $wanted 2>/dev/null |
      sed -n 's/ installed$//p' | sort)
}

# install_packages PART...: installs what packages.txt names there and the system lacks.
install_packages() {
  if ! command -v dpkg-query >/dev/null; then
    say "This is not a Debian system: make sure that what packages.txt names is installed."
    return
  fi
  local missing as_root=()
  missing=$(missing_packages "$@") || exit
  read -r -d '' -a missing <<<"$missing" || true
  [ ${#missing[@]} -gt 0 ] || return 0
  if [ "$(id -u)" -ne 0 ]; then
    command -v sudo >/dev/null || die "Packages are missing. Install them as root: apt-get install ${missing[*]}"
    as_root=(sudo)
    [ -t 0 ] || as_root+=(--non-interactive)
  fi
  say "Installing packages: ${missing[*]}"
  local log apt=("${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get -q -y)
  log=$(mktemp)
  # Lists that cannot be renewed may still do.
  if ! { "${apt[@]}" update || true; "${apt[@]}" install --no-install-recommends "${missing[@]}"; } \
    </dev/null >"$log" 2>&1; then
    cat "$log" >&2
    rm -f "$log"
    die "These packages could not be installed: ${missing[*]}"
  fi
  rm -f "$log"
}

# What a script asks of CMake beyond its preset.
configure=()

# build PRESET [TARGET...]: configures and builds quietly; what went wrong is shown. Two builds of one preset wait
# for each other.
build() {
  local preset=$1 directory=$root/build/$1
  shift
  mkdir -p "$directory"
  if command -v ccache >/dev/null; then
    export CMAKE_CXX_COMPILER_LAUNCHER=ccache CCACHE_SLOPPINESS=pch_defines,time_macros
  fi
  say "Building $preset ..."
  (
    flock 9
    cd "$root" || exit
    log=$directory/build.log
    cmake --preset "$preset" ${configure[@]+"${configure[@]}"} >"$log" 2>&1 9>&- &&
      cmake --build "$directory" ${1:+--target "$@"} >>"$log" 2>&1 9>&- && exit
    grep -v '^\[[0-9]*/[0-9]*\] ' "$log" >&2
    die "The build of $preset failed; the whole log is $log"
  ) 9>"$directory/.lock"
}
