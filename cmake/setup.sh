# Sourced by ./run and ./test, which have entered the project's folder: what both need before they differ.

build=build/default

# Names the packages of packages.txt that this machine lacks, one a line.
missing_packages() {
    local package
    while read -r package; do
        [[ -z $package || $package == \#* ]] && continue
        dpkg-query -W -f '${db:Status-Status}\n' "$package" 2>/dev/null | grep -qx installed || echo "$package"
    done <packages.txt
}

# Installs what is missing. Says nothing of apt's talk unless it fails.
install_packages() {
    local missing as_root=() log
    if ! command -v dpkg-query >/dev/null; then
        echo "No dpkg here: please see yourself that what packages.txt lists is installed." >&2
        return
    fi
    mapfile -t missing < <(missing_packages)
    ((${#missing[@]})) || return 0

    if ((EUID != 0)); then
        if ! command -v sudo >/dev/null; then
            echo "These packages are missing; please install them as root: ${missing[*]}" >&2
            return 1
        fi
        as_root=(sudo)
        [[ -t 0 ]] || as_root+=(-n) # nobody there to type a password
    fi
    as_root+=(env DEBIAN_FRONTEND=noninteractive)

    echo "Installing packages: ${missing[*]}"
    log=$(mktemp)
    # Only the second result counts: one stale source in the lists is no reason to give up.
    "${as_root[@]}" apt-get -q update >"$log" 2>&1 || true
    if ! "${as_root[@]}" apt-get -qy -o DPkg::Lock::Timeout=120 install --no-install-recommends "${missing[@]}" \
        >>"$log" 2>&1 </dev/null; then
        cat "$log" >&2
        rm -f "$log"
        echo "Could not install: ${missing[*]}" >&2
        return 1
    fi
    rm -f "$log"
}

# Configures the default preset and builds the targets given, or everything.
build_targets() {
    cmake --preset default
    cmake --build --preset default ${1:+--target "$@"}
}
