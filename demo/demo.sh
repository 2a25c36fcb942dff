#!/bin/bash
# Shows fleetctl at work on a virtual device: reads, a change that is read back, a refused login, a
# changed password. Ends non-zero if any step is not as it should be.
#
# usage: demo.sh BUILD-DIRECTORY
set -u
build=${1:?usage: demo.sh BUILD-DIRECTORY}
fleetctl=$build/apps/fleetctl/fleetctl
virtual_device=$build/apps/virtual-device/virtual-device
scratch=$(mktemp -d)
device=

finish() {
    [ -n "$device" ] && kill "$device" 2>/dev/null && wait "$device" 2>/dev/null
    rm -rf "$scratch"
}
trap finish EXIT
trap 'exit 130' INT TERM

fail() {
    printf '\nThe demo failed: %s\n' "$1" >&2
    exit 1
}

# Says what comes, shows the command line, runs it and shows what it prints. The exit status has to
# be the expected one, and the output has to match.
step() {
    local title=$1 status=$2 pattern=$3 output got
    shift 3
    printf '\n# %s\n$ fleetctl' "$title"
    printf ' %q' "$@"
    printf '\n'
    output=$("$fleetctl" -o json "$@" 2>&1 </dev/null)
    got=$?
    printf '%s\n(exit status %d)\n' "$output" "$got"
    [ "$got" -eq "$status" ] || fail "the exit status is $got, not $status"
    [[ $output =~ $pattern ]] || fail "the output does not match $pattern"
}

VIRTUAL_DEVICE_PASSWORD=opensesame "$virtual_device" --seconds 120 >"$scratch/listening" &
device=$!
for _ in {1..100}; do
    grep -q 'listening on' "$scratch/listening" && break
    kill -0 "$device" 2>/dev/null || break
    sleep 0.1
done
address=$(sed -n 's/^listening on //p' "$scratch/listening")
[ -n "$address" ] || fail "the virtual device does not listen"

export FLEETCTL_DEVICE=$address FLEETCTL_USER=admin FLEETCTL_PASSWORD=opensesame
echo "A virtual device listens on $address; its user is admin. fleetctl takes the address, the user"
echo "and the password from FLEETCTL_DEVICE, FLEETCTL_USER and FLEETCTL_PASSWORD."

step "The clock, the time server and the ports" 0 \
    '"Year":20.*"NTPPort":123,.*"ControlPort":' get time ntp ports
step "Another time server: the two fields are changed, the others stay" 0 \
    '"code":0' set ntp NTPIp=192.0.2.10 NTPPort=1123
step "The device has it" 0 '"NTPIp":"192.0.2.10","NTPPort":1123' get ntp

export FLEETCTL_PASSWORD=wrong
step "A wrong password is refused" 3 '"name":"login"' get time

export FLEETCTL_PASSWORD=opensesame FLEETCTL_NEW_PASSWORD=swordfish
step "The password is changed; the new one comes from FLEETCTL_NEW_PASSWORD" 0 \
    '"name":"passwd","code":0' 'do' passwd --yes
step "The old password no longer works" 3 '"name":"login"' get time
export FLEETCTL_PASSWORD=swordfish
step "The new one does, and the time server is still the one that was set" 0 \
    '"NTPIp":"192.0.2.10","NTPPort":1123' get ntp

printf '\nAll steps went as they should.\n'
