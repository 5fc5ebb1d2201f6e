# What ./run, ./test and bench/run share: install what is missing, configure, build. Sourced by bash with
# `root` set to the source tree. All that is said goes to standard error, so that standard output
# belongs to the program that is started afterwards.

say() { printf '%s\n' "$@" >&2; }
fail() { say "$@"; exit 1; }

# packages_with TAG...: the names in packages.txt that carry no tag or one of these tags.
packages_with() {
    local line name tag wanted=" $* "
    while IFS= read -r line; do
        read -r name tag _ <<<"${line%%#*}" || true
        [[ -z $name ]] && continue
        [[ -z ${tag:-} || $wanted == *" $tag "* ]] && printf '%s\n' "$name"
    done <"$root/cmake/packages.txt"
    return 0
}

# install_packages TAG...: installs what is missing of the packages with these tags.
install_packages() {
    local wanted missing=() name as_root=() plural=s
    mapfile -t wanted < <(packages_with "$@")
    if ! command -v apt-get >/dev/null || ! command -v dpkg-query >/dev/null; then
        say "This is no Debian or Ubuntu system: the packages of cmake/packages.txt are expected to be there."
        return 0
    fi
    local installed
    installed=" $(dpkg-query -W -f '${Package}:${db:Status-Status} ' "${wanted[@]}" 2>/dev/null || true)"
    for name in "${wanted[@]}"; do
        [[ $installed == *" $name:installed "* ]] || missing+=("$name")
    done
    ((${#missing[@]})) || return 0

    if ((EUID != 0)); then
        command -v sudo >/dev/null || fail \
            "These packages are missing, and only root may install them (there is no sudo here): ${missing[*]}" \
            "As root: apt-get install --no-install-recommends ${missing[*]}"
        as_root=(sudo)
        [[ -t 2 ]] || as_root+=(-n)
    fi
    ((${#missing[@]} == 1)) && plural=
    say "Installing ${#missing[@]} package$plural with ${as_root[*]:+${as_root[0]} }apt-get (one to five minutes): ${missing[*]}"
    mkdir -p "$root/build"
    local log=$root/build/packages.log
    local apt=("${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get -y -q)
    if ! { "${apt[@]}" update && "${apt[@]}" install --no-install-recommends "${missing[@]}"; } \
        >"$log" 2>&1 </dev/null; then
        tail -n 20 "$log" >&2
        fail "The packages could not be installed; the whole output is in $log"
    fi
}

# show_progress PRESET LOG: copies ninja's output to LOG and, once it is known that there is something to build,
# says how much and shows how far it is: on a terminal in one line that is renewed, elsewhere in a line
# every tenth.
show_progress() {
    local preset=$1 log=$2 line shown=-1 percent left done total elapsed
    while IFS= read -r line; do
        printf '%s\n' "$line" >>"$log"
        [[ $line == *"Re-running CMake"* ]] && continue
        [[ $line =~ ^\[([1-9][0-9]*)/([0-9]+)\ ([0-9]+) ]] || continue
        done=${BASH_REMATCH[1]} total=${BASH_REMATCH[2]} elapsed=${BASH_REMATCH[3]}
        if ((shown < 0)); then
            # Two seconds a step is what a source takes without a compiler cache.
            say "Building build/$preset: $total steps, up to $(((total * 2 / $(nproc) + 59) / 60)) min on $(nproc) cores (output in $log)."
            shown=0
        fi
        percent=$((done * 100 / total))
        left=$(((elapsed * (total - done) / done + 59) / 60))
        if [[ -t 2 ]]; then
            printf '\rBuilding: %d of %d (%d%%), %s min left ' "$done" "$total" "$percent" "$left" >&2
        elif ((percent / 10 > shown)); then
            shown=$((percent / 10))
            say "Building: $done of $total ($percent%), $left min left"
        fi
    done
    [[ -t 2 ]] && printf '\r\033[K' >&2
    return 0
}

# build PRESET [TARGET...]: configures where needed and brings the targets up to date. Silent when there is
# nothing to do. Two builds of one preset wait for each other.
build() {
    local preset=$1 directory=$root/build/$1
    shift
    local log=$directory/build.log
    mkdir -p "$directory"
    exec {lock}>"$directory/.lock"
    flock "$lock"
    # A tree that was moved or copied cannot be reused: CMake keeps absolute paths.
    if [[ -f $directory/CMakeCache.txt ]] &&
        ! grep -qxF "CMAKE_HOME_DIRECTORY:INTERNAL=$root" "$directory/CMakeCache.txt"; then
        rm -rf "$directory/CMakeCache.txt" "$directory/CMakeFiles" "$directory/build.ninja"
    fi
    if [[ ! -f $directory/build.ninja ]]; then
        say "Configuring build/$preset (a few seconds)."
        if ! (cd "$root" && cmake --preset "$preset") >"$log" 2>&1 </dev/null; then
            tail -n 30 "$log" >&2
            fail "CMake could not configure the build; the whole output is in $log"
        fi
    fi
    : >"$log"
    if ! NINJA_STATUS='[%f/%t %e] ' ninja -C "$directory" "$@" 2>&1 </dev/null | show_progress "$preset" "$log"; then
        grep -m1 -A 40 '^FAILED: .*\.o ' "$log" >&2 || tail -n 40 "$log" >&2
        fail "The build failed; the whole output is in $log"
    fi
    flock -u "$lock"
    exec {lock}>&-
}
