#!/bin/bash
# Prove the two commands of the README on a bare Debian 12: a debootstrap root with nothing but the
# minimal base system, a clone of this tree in it, ./demo.sh and ./test.sh run there.
#
#   tools/setup/prove_bare.sh [--keep] [--mirror URL] DIRECTORY [TEST-ARGUMENT...]
#
# DIRECTORY is made, and removed at the end unless --keep. What is committed is proven, not what lies
# in the working tree. The mirror and its settings are those of this machine's apt. Needs root and
# debootstrap.
set -euo pipefail
cd "$(dirname "$0")/../.."

keep=no
mirror=
while :; do
    case "${1:-}" in
    --keep) keep=yes; shift ;;
    --mirror) mirror=${2:?}; shift 2 ;;
    *) break ;;
    esac
done
[ $# -ge 1 ] || { echo "usage: $0 [--keep] [--mirror URL] DIRECTORY [TEST-ARGUMENT...]" >&2; exit 2; }
root=$1
shift
[ "$(id -u)" -eq 0 ] || { echo "prove_bare.sh: needs root" >&2; exit 1; }
command -v debootstrap >/dev/null || { echo "prove_bare.sh: needs the package debootstrap" >&2; exit 1; }
[ ! -e "$root" ] || { echo "prove_bare.sh: $root exists" >&2; exit 1; }

suite=bookworm
if [ -z "$mirror" ]; then
    mirror=$(apt-get indextargets --format '$(REPO_URI) $(CODENAME) $(COMPONENT)' "Created-By: Packages" |
        awk -v suite=$suite '$2 == suite && $3 == "main" { print $1; exit }')
fi
[ -n "$mirror" ] || { echo "prove_bare.sh: apt knows no mirror of $suite; give one with --mirror" >&2; exit 1; }

mounted=()
clean_up() {
    local mount
    for mount in "${mounted[@]}"; do umount -l "$mount" || true; done
    [ $keep = yes ] || rm -rf --one-file-system "$root"
}
trap clean_up EXIT

echo "prove: a bare $suite in $root"
debootstrap --variant=minbase $suite "$root" "$mirror" >/dev/null
# How this machine's apt fetches (proxies, retries), without which some mirrors do not answer.
apt-config dump | grep -E '^Acquire::(http|https|Retries|ForceIPv4)' >"$root/etc/apt/apt.conf.d/90host" || true
echo "deb $mirror $suite main" >"$root/etc/apt/sources.list"
cp -L /etc/resolv.conf /etc/hosts "$root/etc/"
mount --bind /proc "$root/proc" && mounted=("$root/proc" "${mounted[@]}")
mount --bind /dev "$root/dev" && mounted=("$root/dev" "${mounted[@]}")
mount --bind /sys "$root/sys" && mounted=("$root/sys" "${mounted[@]}") # x265 asks it for the processors

git clone -q --no-hardlinks . "$root/nvrhal"

status=0
run_bare() {
    local begin=$SECONDS result=0
    echo "prove: $*"
    env -i PATH=/usr/sbin:/usr/bin:/sbin:/bin HOME=/root TERM=dumb chroot "$root" \
        bash -c 'cd /nvrhal && "$@"' bash "$@" </dev/null || result=$?
    echo "prove: $*: exit status $result, $((SECONDS - begin)) s"
    [ $result -eq 0 ] || status=1
}
run_bare ./demo.sh
run_bare ./test.sh "$@"
exit $status
