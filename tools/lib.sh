# shellcheck shell=bash
# Shared by the two root commands and the scripts in this folder. To be sourced; contains only definitions.

unset CDPATH
project=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd -P)
build=$project/build
# shellcheck disable=SC2034 # for the scripts that source this file
{
    pki=$build/pki
    ucrt_compiler=x86_64-w64-mingw32ucrt-g++
    receiver_port=8000 # fixed by the program's test hook
}

say() { printf '%s\n' "$*"; }

fail() {
    printf '%s: %s\n' "${0##*/}" "$*" >&2
    exit 1
}

# --- Steps -----------------------------------------------------------------------------------------------------------

microseconds() { printf '%s' "${EPOCHREALTIME//[!0-9]/}"; }

# step NAME TEXT HINT COMMAND...: runs a long step and prints one line with its duration. The output of COMMAND goes to
# build/logs/NAME.log; if it fails, the output and the hint are shown, and the whole run ends.
step() {
    local log=$build/logs/$1.log text=$2 hint=$3 begun status=0 tenths
    shift 3
    mkdir -p "$build/logs"
    printf '%-60s ' "$text ..."
    begun=$(microseconds)
    "$@" </dev/null >"$log" 2>&1 9>&- || status=$?
    tenths=$((($(microseconds) - begun) / 100000))
    printf '%s%4d.%d s\n' "$([ "$status" -eq 0 ] || echo 'FAILED after ')" $((tenths / 10)) $((tenths % 10))
    [ "$status" -eq 0 ] || explain_failure "$log" "$hint" "$status"
}

explain_failure() { # LOG HINT STATUS
    local lines shown=200
    lines=$(wc -l <"$1")
    {
        [ "$lines" -le "$shown" ] || say "[the last $shown of $lines lines; all of them: $1]"
        tail -n "$shown" "$1"
        say ""
        say "That step failed (exit code $3); its output is above and in $1."
        say "What to do: $2"
    } >&2
    exit "$3"
}

# configure_preset PRESET: configures the preset's tree, unless that was already done with the same presets and
# settings. The build itself notices any other change.
configure_preset() {
    local tree=$build/$1 settings stamp
    settings=(${warnings:+-DVANTOR_WARNINGS_AS_ERRORS=$warnings})
    stamp="$(sha256sum <"$project/CMakePresets.json") ${settings[*]}"
    [ "$(cat "$tree/.configured" 2>/dev/null)" != "$stamp" ] || return 0
    step "configure-$1" "Configuring build/$1" "mend what CMake names; if this tree was moved or copied, remove build/" \
        env --chdir "$project" cmake --preset "$1" "${settings[@]}"
    echo "$stamp" >"$tree/.configured"
}

# build_preset PRESET [TARGET...]: configures the preset's tree and builds the targets, or everything.
build_preset() {
    local preset=$1
    shift
    configure_preset "$preset"
    rm -rf "$build/tmp" && mkdir -p "$build/tmp"
    step "build-$preset" "Building ${*:-everything} in build/$preset" "mend the error above and start again" \
        env --chdir "$project" TMPDIR="$build/tmp" cmake --build --preset "$preset" ${1:+--target "$@"} # the cross compiler leaves temporary files behind
}

# make_prefixes NAME[:REGISTRY]...: makes Wine prefixes and imports the registry file from demo/ if one is named.
make_prefixes() {
    local prefix registry
    for prefix in "$@"; do
        registry=${prefix#"${prefix%%:*}"}
        prefix=${prefix%%:*}
        step "wine-$prefix" "Preparing the Wine prefix \"$prefix\"" "remove build/wine and start again" \
            "$project/tools/wine-prefix" make "$prefix" ${registry:+"$project/demo/${registry#:}.reg"}
    done
}

# --- Packages --------------------------------------------------------------------------------------------------------

# The packages needed on Debian, as "purpose|packages". If releases name a package differently, its names are separated
# by slashes, and the first one in the machine's package lists is used.
package_sets=(
    "build the local receiver and the native tests|g++ cmake ninja-build libcpp-httplib-dev nlohmann-json3-dev libssl-dev"
    "read the options of the tools|libcli11-dev"
    "read the pulses of a fleet quickly|libsimdjson-dev"
    "cross-build the Windows program|g++-mingw-w64-x86-64-posix"
    "build the tests|googletest libgtest-dev libgmock-dev"
    "run the Windows program, TLS included|wine wine64 libgnutls30/libgnutls30t64"
    "make the local certificates, and sign the stand-in module|openssl osslsigncode"
    "give a run a network of its own, where localhost has its name|iproute2 netbase"
)
# What ./check needs in addition.
check_package_sets=(
    "try the program behind a proxy|squid"
    "look at the receiver's page in a browser|chromium"
)
# What ./check --full and --fuzz need in addition to both.
full_package_sets=(
    "find faults in the sources|clang clang-tidy clang-format cppcheck shellcheck libc++-16-dev/libc++-dev"
    "fuzz, and run the tests under the sanitizers of clang|clang libclang-rt-dev"
    "ask a database what a fleet's report says|postgresql jq"
)
# What tools/make-release needs beside the first.
release_package_sets=(
    "make the zips of a release|git zip unzip"
)
# What is used where a release has it.
optional_package_sets=(
    "cross-build with the newer C runtime|g++-mingw-w64-ucrt64"
)

# Names what is missing, with its purpose, and installs it. Asks the package manager for nothing when all is there.
install_packages() { # pulse|release|check [full]
    if ! command -v apt-get >/dev/null || ! command -v dpkg-query >/dev/null; then
        say "This is no Debian: the needed packages are not installed for you (tools/lib.sh lists them)."
        return
    fi
    local set lacking missing=() optional=() installed sets=("${package_sets[@]}")
    [[ " $* " != *" check "* ]] || sets+=("${check_package_sets[@]}")
    [[ " $* " != *" full "* ]] || sets+=("${full_package_sets[@]}")
    [[ " $* " != *" release "* ]] || sets+=("${release_package_sets[@]}")
    installed=" $(dpkg-query --show --showformat='${db:Status-Status}:${Package} ') "
    for set in "${sets[@]}"; do
        lacking=$(lacking_packages "${set#*|}")
        [ -z "$lacking" ] || say "To ${set%%|*}: $lacking"
        # shellcheck disable=SC2206 # a list of words
        missing+=($lacking)
    done
    for set in "${optional_package_sets[@]}"; do
        [[ " $* " == *" check "* ]] || break
        for lacking in $(lacking_packages "${set#*|}"); do
            if [ ${#missing[@]} -ne 0 ] || apt-cache show --quiet=0 "$lacking" 2>/dev/null | grep -q .; then
                say "To ${set%%|*}, if this release has it: $lacking"
                optional+=("?$lacking")
            fi
        done
    done
    [ $((${#missing[@]} + ${#optional[@]})) -eq 0 ] || apt_install "${missing[@]}" "${optional[@]}"
}

# Prints the words for which no alternative is in $installed.
lacking_packages() { # "NAME[/NAME...] ..."
    local word name
    for word in $1; do
        for name in ${word//\// }; do
            [[ $installed != *" installed:$name "* ]] || continue 2
        done
        printf '%s ' "$word"
    done
}

apt_install() { # [?]NAME[/NAME...]...
    local as_root=()
    if [ "$EUID" -ne 0 ]; then
        command -v sudo >/dev/null || fail "run this as root, then start again: apt-get install --no-install-recommends $*"
        as_root=(sudo)
    fi
    # The lock lets two clones that start together install one after the other; the second one finds all in place. squid
    # and postgresql come as services of the machine, too, which nobody asked for: neither is started now or at the next boot.
    # shellcheck disable=SC2016 # expanded by the inner shell
    step packages "Installing the packages with apt-get" \
        "see that this machine reaches its Debian mirror; a half-done installation is mended by 'dpkg --configure -a'" \
        "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive flock --timeout 900 /var/lib/dpkg bash -ec '
            policy=/usr/sbin/policy-rc.d
            if [ ! -e "$policy" ]; then
                trap "rm -f $policy" EXIT
                trap "exit 143" INT TERM HUP
                printf "%s\n" "#!/bin/sh" "case \$1 in squid*|postgresql*) exit 101 ;; esac" >"$policy"
                chmod 755 "$policy"
            fi
            apt-get -q update || echo "Going on with the package lists that are there."
            names=()
            for word in "$@"; do
                for name in $(tr / " " <<<"${word#\?}"); do
                    if apt-cache show --quiet=0 "$name" 2>/dev/null | grep -q .; then
                        names+=("$name")
                        continue 2
                    fi
                done
                [[ $word == \?* ]] || { echo "No package is named $word."; exit 1; }
            done
            [ ${#names[@]} -ne 0 ] || exit 0
            apt-get -q --yes --no-install-recommends -o DPkg::Lock::Timeout=300 install "${names[@]}"
            for name in squid postgresql; do
                case " ${names[*]} " in *" $name "*) update-rc.d "$name" disable ;; esac
            done' bash "$@"
}

# --- One run at a time in a clone ------------------------------------------------------------------------------------

# Holds the clone's lock, on descriptor 9, until this shell ends. Start processes that outlive the shell with 9>&-.
lock_clone() {
    local waits_for
    mkdir -p "$build"
    exec 9<>"$build/run.lock"
    if ! flock --nonblock 9; then
        read -r waits_for <"$build/run.lock" || true
        say "Waiting for the other run in this clone (${waits_for:-unknown}) to end ..."
        flock --timeout 1800 9 || fail "the other run (${waits_for:-unknown}) has not ended within half an hour"
    fi
    echo "${0##*/}, process $$" >"$build/run.lock"
}

# --- Children --------------------------------------------------------------------------------------------------------

# attend COMMAND...: runs COMMAND, forwards signals that would end this shell, and waits until it has cleaned up.
# Returns its exit code.
attend() {
    local child status=0
    "$@" </dev/null 9>&- &
    child=$!
    # shellcheck disable=SC2064 # expanded now, on purpose
    trap "kill -TERM $child 2>/dev/null || true" INT TERM HUP
    wait "$child" || status=$?
    while kill -0 "$child" 2>/dev/null; do # the wait was cut short by a signal
        status=0
        wait "$child" || status=$?
    done
    trap - INT TERM HUP
    return "$status"
}

# end_child PID: sends a child SIGTERM, and SIGKILL after five seconds.
end_child() {
    local tries
    kill -TERM "$1" 2>/dev/null || return 0
    for ((tries = 0; tries < 50; ++tries)); do
        kill -0 "$1" 2>/dev/null || break
        sleep 0.1
    done
    kill -KILL "$1" 2>/dev/null || true
    wait "$1" 2>/dev/null || true
}

# --- The network -----------------------------------------------------------------------------------------------------

require_localhost() {
    getent ahosts localhost >/dev/null || fail "the name localhost is unknown here; /etc/hosts needs '127.0.0.1 localhost'"
}

# wait_for_port PORT: waits up to 30 seconds until PORT is free; otherwise fails and names the process that holds it.
wait_for_port() {
    local tries
    for ((tries = 0; tries < 60; ++tries)); do
        [ -n "$(listeners "$1")" ] || return 0
        [ "$tries" -ne 0 ] || say "Port $1 is taken; waiting for it to become free ..."
        sleep 0.5
    done
    fail "port $1 is needed and still held by: $(listeners "$1")"
}

# Who listens on PORT, as 'users:(("name",pid=1,fd=3))', or as an address if the process belongs to another user.
listeners() {
    ss --no-header --listening --tcp --numeric --processes "sport = :$1" | awk '{ print ($6 != "" ? $6 : $4) }' | sort -u
}

# --- Wine ------------------------------------------------------------------------------------------------------------

prefix_directory() { printf '%s/wine/%s' "$build" "$1"; }

# wine_environment PREFIX_DIRECTORY: sets the environment of programs under Wine, without the caller's display, proxy or
# locale settings. Home and temporary files stay in the build tree.
wine_environment() {
    unset "${!WINE@}" "${!LC_@}" "${!XDG_@}" LANGUAGE TZ DISPLAY WAYLAND_DISPLAY \
        http_proxy https_proxy all_proxy no_proxy HTTP_PROXY HTTPS_PROXY ALL_PROXY NO_PROXY
    export LANG=C.UTF-8
    export WINEPREFIX=$1
    export WINEDEBUG=-all
    export WINEDLLOVERRIDES="mscoree,mshtml=;winemenubuilder.exe=d;winedbg.exe=d"
    export HOME=$build/wine/home
    if [ -e "$build/wine/without-tmpdir" ]; then unset TMPDIR; else export TMPDIR=$1/tmp; fi # see wine-prefix
    command -v wine >/dev/null || fail "Wine is not installed (Debian packages: wine wine64)"
}
