# What ./play and ./test share: from a fresh checkout on a fresh Debian to a build. Sourced by both,
# in the checkout's root, after they have set `command` to their own name. Every step is silent when
# there is nothing to do, so that a second start costs no more than asking.

root=$PWD
preset=${preset:-release}
build=$root/build/$preset

playPackages=(
    ca-certificates cmake g++ ninja-build pkg-config
    libcli11-dev libgl-dev libgl1-mesa-dri libopenal-dev libopenscenegraph-dev
    libqt5opengl5-dev libqt5websockets5-dev libsdl2-dev libsndfile1-dev libxcb1-dev
    nlohmann-json3-dev qtbase5-dev
)
testPackages=(
    appstream clang-format-14 cppcheck desktop-file-utils git imagemagick libbenchmark-dev
    libgtest-dev man-db python3 python3-pil xauth xdotool xvfb
)
longTestPackages=(clang clang-tidy libclang-rt-14-dev)
packagePackages=(dpkg-dev git gzip lintian)
soakPackages=(gcovr python3-venv)

say() { echo "$command: $*"; }

fail()
{
    echo "$command: $*" >&2
    exit 1
}

# Shows of a step's output only the lines that match, each over the one before on a terminal, and
# one every five seconds elsewhere, so that a log of it stays short.
showProgress()
{
    local pattern=$1 line last=-5 drawn=
    while IFS= read -r line; do
        [[ $line =~ $pattern ]] || continue
        if [[ -t 1 ]]; then
            printf '\r\e[K\e[?7l%s\e[?7h' "$line"  # without wrapping, however long it is
            drawn=yes
        elif ((SECONDS >= last + 5)); then
            echo "$line"
            last=$SECONDS
        fi
    done
    [[ -z $drawn ]] || printf '\r\e[K'
}

# step WHAT ADVICE LOG PATTERN PROGRAM ARGUMENT...: runs a program whose output goes to a log, of
# which the lines that match the pattern are shown. On failure: the end of the log, and the advice.
step()
{
    local what=$1 advice=$2 log=$3 pattern=$4
    shift 4
    # Prompts stay possible on the terminal itself; nothing may wait for an answer unseen.
    "$@" </dev/null 2>&1 | tee "$log" | showProgress "$pattern"
    ((PIPESTATUS[0] == 0)) && return
    echo "$command: $what failed. The end of ${log#"$root"/}:" >&2
    logEnd "$log" | sed 's/^/    /' >&2
    fail "$advice"
}

# A compiler's first error counts, not the last line of the job that happened to end after it.
logEnd()
{
    if grep -q '^FAILED: ' "$1"; then
        sed -n '/^FAILED: /,$p' "$1" | grep -vE '^\[|^([^ ]*ccache )?[^ ]*c\+\+ ' | head -n 30
    else
        tail -n 25 "$1"
    fi
}

# missingPackages PACKAGE...: those that Debian has not installed.
missingPackages()
{
    local installed
    # shellcheck disable=SC2016  # the dollars are dpkg-query's
    installed=$(dpkg-query -W -f '${db:Status-Status} ${Package}\n' "$@" 2>/dev/null)
    comm -23 <(printf '%s\n' "$@" | sort) <(sed -n 's/^installed //p' <<<"$installed" | sort -u)
}

# PhysX needs cargo, but only until it is built.
hasPhysx()
{
    [[ -f ${XDG_CACHE_HOME:-$HOME/.cache}/rollix/physx-5.1.3/lib/libphysx.a ]]
}

hasCargo()
{
    [[ $(cargo --version 2>/dev/null) =~ ^cargo\ ([0-9]+)\.([0-9]+) ]] &&
        ((BASH_REMATCH[1] > 1 || BASH_REMATCH[2] >= 70))
}

# installPackages PACKAGE...: brings in what is missing of these, and cargo where PhysX needs it.
installPackages()
{
    local missing=() asRoot=() log
    if ! command -v apt-get >/dev/null || ! command -v dpkg-query >/dev/null; then
        [[ -f $build/build.ninja ]] ||
            say "this is no Debian, so please see to it that these are installed (Debian's names):" \
                "$* and cargo 1.70 or newer"
        return
    fi
    mapfile -t missing < <(missingPackages "$@")
    # Debian 12 has its new cargo under a name of its own; its successors just call it cargo.
    hasPhysx || hasCargo || missing+=(cargo-web)
    ((${#missing[@]})) || return 0

    say "installing Debian packages: ${missing[*]}"
    if ((EUID != 0)); then
        command -v sudo >/dev/null ||
            fail "only root may install packages, and sudo is not here. As root, run:" \
                "apt-get install ${missing[*]}"
        say "sudo may ask for your password now"
        sudo -v || fail "no packages without sudo. As root, run: apt-get install ${missing[*]}"
        asRoot=(sudo)
    fi
    log=$root/build/packages.log
    mkdir -p "$root/build"
    local apt=("${asRoot[@]}" env DEBIAN_FRONTEND=noninteractive apt-get -q
               -o DPkg::Lock::Timeout=300)
    step "asking Debian for its list of packages" "check the network connection and start again" \
        "$log" '^(Get|Hit):' "${apt[@]}" update
    if [[ ${missing[-1]} == cargo-web ]] && ! apt-cache show cargo-web >/dev/null 2>&1; then
        missing[-1]=cargo
    fi
    # Never take anything away: cargo-web would replace another cargo, and that is the owner's say.
    step "installing packages" \
        "if a package would have to be removed, decide for yourself: apt-get install ${missing[*]}" \
        "$log" '^(Get:|Unpacking|Setting up)' \
        "${apt[@]}" install --yes --no-remove --no-install-recommends "${missing[@]}"
}

bringPhysx()
{
    third_party/physx/build || fail "there is no Rollix without PhysX; what to do stands above"
}

# A build folder that was made for another place (a moved checkout, a cache that went away) cannot
# be mended from inside.
dropStaleBuild()
{
    local cache=$build/CMakeCache.txt home physx
    [[ -f $cache ]] || return 0
    home=$(sed -n 's/^CMAKE_HOME_DIRECTORY:INTERNAL=//p' "$cache")
    physx=$(sed -n 's/^PhysX_LIBRARY:FILEPATH=//p' "$cache")
    if [[ ! $home -ef $root ]]; then
        say "the build folder was made for $home: starting it anew"
        rm -rf "$build"
    elif [[ -n $physx && $physx != *NOTFOUND && ! -f $physx ]]; then
        say "PhysX is no longer in $physx: configuring anew"
        rm -rf "$cache" "$build/CMakeFiles" "$build/build.ninja"
    fi
}

# configure ARGUMENT...: to CMake, unless the build folder is there and no argument was given.
configure()
{
    [[ -f $build/build.ninja && $# == 0 ]] && return
    mkdir -p "$build"
    if [[ -z ${CMAKE_CXX_COMPILER_LAUNCHER:-} ]] && command -v ccache >/dev/null; then
        export CMAKE_CXX_COMPILER_LAUNCHER=ccache
    fi
    say "configuring"
    step "configuring" "install what it could not find, or remove build/ and start again" \
        "$build/configure.log" '^-- ' cmake --preset "$preset" "$@"
}

# Once in thousands of times GCC finds no room where a precompiled header wants to be; then again.
# shellcheck disable=SC2016  # the dollars are the inner shell's
ninjaTwice='
    build=("-C" "$0" "-j" "$(nproc)" "$@")
    ninja "${build[@]}" && exit
    grep -qs "PCH allocation failure" "$0/compile.log" && ninja "${build[@]}"
'

# compile TARGET...: with all cores; two of our commands at once take turns.
compile()
{
    local targets=("$@")
    (
        flock --nonblock 8 || { say "waiting for another build in this checkout"; flock 8; }
        step "compiling" "mend the error, or remove build/ and start again" \
            "$build/compile.log" '^\[[0-9]+/[0-9]+\]' \
            env NINJA_STATUS='[%f/%t] ' \
            "${BASH:-bash}" -c "$ninjaTwice" "$build" "${targets[@]}" 8>&-
    ) 8>"$build/.lock" || exit 1
}
