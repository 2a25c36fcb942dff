#!/usr/bin/env bash
# Tests what users get, from a build of the release preset: the symbols and the size of the library;
# then the installed tree and the Debian packages, each of them used by a project of a user.
#
# usage: run.sh BUILD-DIRECTORY
#
# The packages are those of BUILD-DIRECTORY/packages. They are installed below a scratch directory,
# by dpkg with the dependencies of this machine, which takes root or sudo.
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
build=$(cd "${1:?usage: run.sh BUILD-DIRECTORY}" && pwd)
scratch=$(mktemp -d)
device=
as_root=()
[ "$(id -u)" -eq 0 ] || as_root=(sudo)

finish() {
    stop_device
    "${as_root[@]}" rm -rf "$scratch"
}
trap finish EXIT
trap 'exit 130' INT TERM

say() { printf -- '-- %s\n' "$*"; }

fail() {
    printf 'run.sh: %s\n' "$*" >&2
    exit 1
}

# expect WHAT COMMAND...: the command has to succeed and to print WHAT.
expect() {
    local expected=$1 printed
    shift
    printed=$("$@") || fail "$* ended with status $?: $printed"
    [ "$printed" = "$expected" ] || fail "$* printed '$printed' instead of '$expected'"
}

# start_device PREFIX: its port is in $port, its password is "secret".
start_device() {
    : >"$scratch/listening"
    VIRTUAL_DEVICE_PASSWORD=secret "$1/bin/virtual-device" --port 0 --seconds 300 \
        >"$scratch/listening" &
    device=$!
    for _ in $(seq 100); do
        port=$(sed -n 's/^listening on 127\.0\.0\.1://p' "$scratch/listening")
        [ -n "$port" ] && return
        sleep 0.1
    done
    fail 'the device does not listen'
}

stop_device() {
    [ -n "$device" ] || return 0
    kill "$device" 2>/dev/null || true
    wait "$device" || true
    device=
}

# uses DIRECTORY PASSWORD: the programs of the user do what they are for; the password changes.
uses() {
    expect 'success: DeviceTime 2031-02-03' "$1/read_time" "$port" "$2"
    if [ -x "$1/change_password" ]; then
        "$1/change_password" "$port" "$2" changed
        expect 'success: DeviceTime 2031-02-03' "$1/read_time" "$port" changed
    fi
}

# consume PREFIX: builds the user's project by CMake and by hand, and runs it.
consume() {
    local prefix=$1 library flags
    library=$(dirname "$(find "$prefix" -name libFleetKit.so)")

    say "a user's project by CMake"
    cmake -S "$here/consumer" -B "$scratch/by-cmake" -DCMAKE_PREFIX_PATH="$prefix" >/dev/null
    cmake --build "$scratch/by-cmake" >/dev/null

    say "a user's program by pkg-config and C++17"
    mkdir -p "$scratch/by-hand"
    flags=$(PKG_CONFIG_PATH="$library/pkgconfig" pkg-config --cflags --libs fleetkit)
    # shellcheck disable=SC2086 # the flags are words
    g++ -std=c++17 -Wall -Wextra -Wpedantic -Werror "$here/consumer/read_time.cpp" \
        -o "$scratch/by-hand/read_time" $flags
    # shellcheck disable=SC2086
    if g++ -std=c++17 -M "$here/consumer/read_time.cpp" $flags | grep -i 'qt\|qstring'; then
        fail 'a program without texts of Qt includes headers of Qt'
    fi

    start_device "$prefix"
    export FLEETCTL_PASSWORD=secret FLEETCTL_USER=admin FLEETCTL_DEVICE=127.0.0.1:$port
    "$prefix/bin/fleetctl" -o json set time Year=2031 Month=2 Day=3 Hour=4 >/dev/null
    LD_LIBRARY_PATH=$library uses "$scratch/by-hand" secret
    uses "$scratch/by-cmake" secret
    stop_device
    rm -rf "$scratch/by-cmake" "$scratch/by-hand"
}

# The tree is moved after it was installed: nothing in it may know where it was put.
test_installed_tree() {
    say "installing"
    cmake --install "$build" --prefix "$scratch/first" >/dev/null
    mv "$scratch/first" "$scratch/moved"
    python3 -B "$here/../headers/compile_alone.py" g++ "$scratch/moved/include"
    consume "$scratch/moved"
}

test_packages() {
    local admin=$scratch/dpkg root=$scratch/root path
    say "installing the Debian packages"
    mkdir -p "$admin/info" "$admin/updates" "$root/etc" "$scratch/bin"
    cp /var/lib/dpkg/status "$admin"
    # The library's own script runs in this system, where it must not touch the loader's cache.
    # shellcheck disable=SC2016 # expanded by the script
    printf '#!/bin/sh\nexec /sbin/ldconfig -r "$DPKG_ROOT"\n' >"$scratch/bin/ldconfig"
    chmod +x "$scratch/bin/ldconfig"
    path=$scratch/bin:$PATH:/usr/sbin:/sbin
    # It warns that it does not know the files of the machine's own packages.
    "${as_root[@]}" env PATH="$path" dpkg --admindir="$admin" --instdir="$root" \
        --force-script-chrootless --install "$build"/packages/*.deb >"$scratch/dpkg.log" 2>&1 || {
        grep -v 'files list file' "$scratch/dpkg.log" >&2
        fail 'dpkg refused the packages'
    }
    consume "$root/usr"
}

# What a reader of the first page does, installation and removal included, word by word: in a mount
# namespace, where /usr/local is empty and /etc, with the list of libraries in the loader, a copy.
test_first_page() {
    say "the first page, as it is written"
    if ! "${as_root[@]}" unshare --mount true 2>/dev/null; then
        say "skipped: this machine gives no mount namespace"
        return
    fi
    "${as_root[@]}" unshare --mount bash -euo pipefail -s "$here/../.." "$scratch" <<'END'
cd "$1"
cp -a /etc "$2/etc"
mkdir "$2/local"
mount --bind "$2/etc" /etc
mount --bind "$2/local" /usr/local
mount -t tmpfs tmpfs /var/cache/ldconfig
./dev install /usr/local
link=()
for word in $(pkg-config --cflags --libs fleetkit); do
    link+=("--link=$word")
done
python3 -B tests/docs/run_examples.py --compiler=g++ "${link[@]}" \
    --fleetctl=/usr/local/bin/fleetctl --virtual-device=/usr/local/bin/virtual-device \
    docs/getting-started.md
./dev uninstall /usr/local
left=$(find /usr/local -type f -o -iname '*fleetkit*')
[ -z "$left" ] || { printf 'left behind: %s\n' "$left"; exit 1; }
END
}

say "what the library shows"
python3 -B "$here/check_library.py" "$build/generated/exported-records.txt" \
    "$build/src/libFleetKit.so" "$build/src/libFleetKitQt.so"
test_installed_tree
test_packages
test_first_page
say "installed tree and packages are as they should be"
