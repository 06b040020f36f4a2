#!/bin/bash
# Prove the Debian packages on a bare Debian 12: a debootstrap root with nothing but the minimal base
# system gets the packages that tools/packages/build.sh has built, and the tests of debian/tests are run
# there, each with no more than it says it depends on.
#
#   tools/packages/prove_bare.sh [--keep] [--mirror URL] DIRECTORY [PACKAGES]
#
# DIRECTORY is made, and removed at the end unless --keep; PACKAGES, else build/packages, holds the
# packages. Needs root and debootstrap.
set -euo pipefail
cd "$(dirname "$0")/../.."
. tools/setup/bare_root.sh

bare_root_arguments prove_bare.sh "$@"
packages=${rest[0]:-build/packages}
[ -n "$(find "$packages" -maxdepth 1 -name '*.deb')" ] || { echo "prove_bare.sh: $packages holds no packages" >&2; exit 1; }
bare_root_make

# The tests alone: nothing of the sources can help them.
mkdir -p "$root/nvrhal/tests" "$root/packages"
cp -r debian "$root/nvrhal"
cp -r tests/installed "$root/nvrhal/tests"
find "$packages" -maxdepth 1 -name '*.deb' ! -name '*-dbgsym_*' -exec cp {} "$root/packages" \;

# The packages as a repository, so that their dependencies are looked up as a user's apt does.
bare_root_run apt-get -q update >/dev/null || exit 1
bare_root_run apt-get -q install -y --no-install-recommends apt-utils >/dev/null || exit 1
(cd "$root/packages" && chroot "$root" sh -c 'cd /packages && apt-ftparchive packages .' >Packages)
echo "deb [trusted=yes] file:/packages ./" >"$root/etc/apt/sources.list.d/packages.list"
bare_root_run apt-get -q update >/dev/null || exit 1

# The tests that debian/tests/control lists: its name, and what it depends on.
tests=0
while IFS=: read -r name depends; do
    tests=$((tests + 1))
    read -ra needed <<<"${depends//,/ }"
    bare_root_run apt-get -q install -y --no-install-recommends "${needed[@]}" >/dev/null || continue
    bare_root_run sh -c "mkdir -p /tmp/$name && AUTOPKGTEST_TMP=/tmp/$name debian/tests/$name" || true
done < <(awk '/^Tests:/ { name = $2 } /^Depends:/ { sub(/^Depends: */, ""); print name ":" $0 }' debian/tests/control)
[ $tests -gt 0 ] || { echo "prove_bare.sh: debian/tests/control lists no test" >&2; exit 1; }

# What the packages leave when they go: nothing.
cat >"$root/packages/left.sh" <<'END'
apt-get -q purge -y libnvrhal1 libvboard1 >/dev/null
left=$(find /bin /etc /lib /opt /sbin /usr /var/cache -xdev \( -name '*nvrhal*' -o -name '*vboard*' -o -name 'nvrec*' \))
[ -z "$left" ] || { echo "left behind:"; echo "$left"; exit 1; }
END
bare_root_run sh /packages/left.sh || true
exit $status
