# Shared by the scripts beside this file, which source it.

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)

say() { printf 'parcelo: %s\n' "$*" >&2; }

# Installs what is missing of the named groups of scripts/packages; never asks.
install_packages() {
    local wanted=() missing=() group package
    while read -r group package; do
        [[ " $* " == *" $group "* ]] && wanted+=("$package")
    done < <(grep -v '^#' "$root/scripts/packages")
    for package in "${wanted[@]}"; do
        [[ $(dpkg-query -W -f '${db:Status-Status}' "$package" 2>/dev/null) == installed ]] || missing+=("$package")
    done
    [[ ${#missing[@]} -eq 0 ]] && return
    say "installing ${missing[*]}"
    local as_root=()
    if [[ $(id -u) -ne 0 ]]; then
        as_root=(sudo -n)
        sudo -n true 2>/dev/null || { say "this takes root, or sudo without a password"; return 1; }
    fi
    quietly "${as_root[@]}" apt-get update -q
    quietly "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive \
        apt-get install -q -y --no-install-recommends "${missing[@]}"
}

# Runs a command whose output matters only when it fails.
quietly() {
    local log status=0
    log=$(mktemp)
    "$@" >"$log" 2>&1 </dev/null || status=$?
    [[ $status -eq 0 ]] || { cat "$log" >&2; say "failed: $*"; }
    rm -f "$log"
    return $status
}

# build PRESET TARGETS [OPTION…]: configures and builds build/PRESET, and says nothing if all is well.
build() {
    local preset=$1 targets=$2
    shift 2
    (cd "$root" && quietly cmake --preset "$preset" "$@" && quietly cmake --build --preset "$preset" --target $targets)
}
