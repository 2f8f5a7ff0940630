# shellcheck shell=bash disable=SC2034
# Sourced by the scripts beside it: where the checkout stands, quiet builds, and defaults that hold on unusual machines.
set -euo pipefail

caller_folder=$PWD
cd "$(dirname "${BASH_SOURCE[0]}")/.."
root=$PWD

# The compiler cache needs a folder it can write; without a usable home it lives in the build folder.
cache_home=${XDG_CACHE_HOME:-${HOME:-/nonexistent}}
if [ -z "${CCACHE_DIR:-}" ] && ! { [ -d "$cache_home" ] && [ -w "$cache_home" ]; }; then
  export CCACHE_DIR=$root/build/ccache
fi

die() {
  printf '%s: %s\n' "scripts/$(basename "$0")" "$*" >&2
  exit 1
}

# A checkout may belong to another user than the one who builds it (sudo, a mounted folder).
git() { command git -c safe.directory="$root" "$@"; }

# Reads a build's output and shows how far it is: on a terminal on one line, elsewhere once, when there is much to do.
show_progress() {
  local what=$1 line steps told=
  while IFS= read -r line; do
    case $line in "["*"/"*"]"*) ;; *) continue ;; esac
    steps=${line%%]*}
    steps=${steps#*/}
    if [ -t 1 ]; then printf '\r%s %s\033[K' "$what" "${line%%]*}]"
    elif [ -z "$told" ] && [ "$steps" -gt 9 ]; then
      echo "$what: $steps steps"
      told=yes
    fi
  done
  [ ! -t 1 ] || printf '\r\033[K'
}

# quietly LOG WHAT COMMAND…: runs the command; its output goes to LOG and is shown only when it fails.
quietly() {
  local log=$1 what=$2
  shift 2
  mkdir -p "$(dirname "$log")"
  if ! "$@" 2>&1 | tee "$log" | show_progress "$what"; then
    tail -n 80 "$log" >&2
    die "$what failed; everything it said is in $log"
  fi
}

# build PRESET [TARGET…]: configures when that was never done here, then builds what has changed.
build() {
  local preset=$1 folder=build/$1
  shift
  if [ -e "$folder/CMakeCache.txt" ] && ! grep -qxF "CMAKE_HOME_DIRECTORY:INTERNAL=$root" "$folder/CMakeCache.txt"; then
    rm -rf "$folder" # the checkout was moved or copied
  fi
  if [ ! -e "$folder/build.ninja" ]; then
    quietly "build/log/configure-$preset.txt" "Configuring ($preset)" cmake --preset "$preset"
  fi
  local target arguments=()
  for target in "$@"; do arguments+=(--target "$target"); done
  quietly "build/log/build-$preset.txt" "Building ($preset)" cmake --build --preset "$preset" "${arguments[@]}"
}

# A private folder for this run, gone when the script ends.
scratch_folder() {
  scratch=$(mktemp -d "${TMPDIR:-/tmp}/thalvorn.XXXXXX")
  trap 'rm -rf "$scratch"' EXIT
}

# Keeps what a program run from here stores or caches away from the user's own data.
private_user_folders() {
  local name
  for name in data config cache state; do
    export "XDG_${name^^}_HOME=$scratch/$name"
  done
  (umask 077 && mkdir "$scratch"/{data,config,cache,state,runtime})
  export XDG_RUNTIME_DIR=$scratch/runtime
}
