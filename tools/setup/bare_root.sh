# Sourced: a bare Debian 12 in a directory, for scripts that prove what runs where nothing is installed.
#
#   bare_root_arguments NAME "$@"   understands [--keep] [--mirror URL] DIRECTORY; the rest is left in
#                                   "${rest[@]}", the directory in $root
#   bare_root_make                  the minimal base system in $root, with this machine's mirror and its
#                                   settings; removed at the end of the script unless --keep
#   bare_root_run COMMAND...        run in $root, in its folder /nvrhal; counts into $status
#
# Needs root and debootstrap.

bare_root_suite=bookworm
bare_root_mounted=()
status=0

bare_root_arguments() {
    bare_root_name=$1
    shift
    bare_root_keep=no
    bare_root_mirror=
    while :; do
        case "${1:-}" in
        --keep) bare_root_keep=yes; shift ;;
        --mirror) bare_root_mirror=${2:?}; shift 2 ;;
        *) break ;;
        esac
    done
    [ $# -ge 1 ] || { echo "usage: $bare_root_name [--keep] [--mirror URL] DIRECTORY ..." >&2; exit 2; }
    root=$1
    shift
    rest=("$@")
    [ "$(id -u)" -eq 0 ] || { echo "$bare_root_name: needs root" >&2; exit 1; }
    command -v debootstrap >/dev/null || { echo "$bare_root_name: needs the package debootstrap" >&2; exit 1; }
    [ ! -e "$root" ] || { echo "$bare_root_name: $root exists" >&2; exit 1; }
    if [ -z "$bare_root_mirror" ]; then
        bare_root_mirror=$(apt-get indextargets --format '$(REPO_URI) $(CODENAME) $(COMPONENT)' "Created-By: Packages" |
            awk -v suite=$bare_root_suite '$2 == suite && $3 == "main" { print $1; exit }')
    fi
    [ -n "$bare_root_mirror" ] || {
        echo "$bare_root_name: apt knows no mirror of $bare_root_suite; give one with --mirror" >&2
        exit 1
    }
}

bare_root_remove() {
    local mount
    for mount in "${bare_root_mounted[@]}"; do umount -l "$mount" || true; done
    [ $bare_root_keep = yes ] || rm -rf --one-file-system "$root"
}

bare_root_make() {
    local mount
    trap bare_root_remove EXIT
    echo "prove: a bare $bare_root_suite in $root"
    debootstrap --variant=minbase $bare_root_suite "$root" "$bare_root_mirror" >/dev/null
    # How this machine's apt fetches (proxies, retries), without which some mirrors do not answer.
    apt-config dump | grep -E '^Acquire::(http|https|Retries|ForceIPv4)' >"$root/etc/apt/apt.conf.d/90host" || true
    echo "deb $bare_root_mirror $bare_root_suite main" >"$root/etc/apt/sources.list"
    cp -L /etc/resolv.conf /etc/hosts "$root/etc/"
    for mount in proc dev dev/pts sys; do # x265 asks /sys for the processors, apt wants a terminal
        mount --bind /$mount "$root/$mount" && bare_root_mounted=("$root/$mount" "${bare_root_mounted[@]}")
    done
}

bare_root_run() {
    local begin=$SECONDS result=0
    echo "prove: $*"
    env -i PATH=/usr/sbin:/usr/bin:/sbin:/bin HOME=/root TERM=dumb LC_ALL=C.UTF-8 DEBIAN_FRONTEND=noninteractive \
        chroot "$root" bash -c 'cd /nvrhal && "$@"' bash "$@" </dev/null || result=$?
    echo "prove: $*: exit status $result, $((SECONDS - begin)) s"
    [ $result -eq 0 ] || status=1
    return $result
}
