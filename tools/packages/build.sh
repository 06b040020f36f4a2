#!/bin/bash
# Build the Debian packages from the files that git knows of this tree, as they are, and look at them with
# lintian, which may have nothing to say: neither an error nor a warning.
#
#   tools/packages/build.sh [DIRECTORY]
#
# DIRECTORY, else build/packages, is emptied and gets the packages, lintian's report, and the sources they
# were built from; this tree is not written to.
set -euo pipefail
cd "$(dirname "$0")/../.."

directory=${1:-build/packages}
version=$(sed -nE '1s/.*\((.*)\).*/\1/p' debian/changelog)
rm -rf "$directory"
mkdir -p "$directory/nvrhal-$version"
directory=$(cd "$directory" && pwd)
# Files that are deleted here, but known to git, are none.
git ls-files -z | xargs -0 -I{} sh -c 'test ! -e "$1" || printf "%s\0" "$1"' sh {} |
    tar --null --no-recursion -T - -c | tar -x -C "$directory/nvrhal-$version"

echo "packages: building version $version"
begin=$SECONDS
cd "$directory/nvrhal-$version"
DEB_BUILD_OPTIONS="parallel=$(nproc) ${DEB_BUILD_OPTIONS:-}" dpkg-buildpackage --no-sign >"$directory/build.log" 2>&1 ||
    { tail -n 60 "$directory/build.log"; echo "packages: dpkg-buildpackage failed; whole log: $directory/build.log" >&2; exit 1; }
cd "$directory"
grep -E '^[0-9]+% tests passed' build.log || echo "packages: without tests"
echo "packages: built in $((SECONDS - begin)) s:"
ls ./*.deb | sed 's|^\./|  |'
for package in libnvrhal1 libnvrhal-dev libvboard1 libvboard-dev nvrec vboard python3-vboard libnvrhal1-dbgsym libvboard1-dbgsym nvrec-dbgsym; do
    [ -n "$(find . -maxdepth 1 -name "${package}_${version}_*.deb")" ] || { echo "packages: $package is missing" >&2; exit 1; }
done

# Unpacked beside the build, where the system's own directories cannot help, they are built against.
for package in ./*.deb; do dpkg-deb -x "$package" root; done
libraries=$(dirname "$(find "$directory/root" -name libnvrhal.so)")
PKG_CONFIG_SYSROOT_DIR=$directory/root LD_LIBRARY_PATH=$libraries \
    "nvrhal-$version/tests/installed/check.sh" "$directory/check" "$directory/root/usr"

# Sources and packages. A process of lintian that was killed prints nothing, so its exit status counts too.
status=0
lintian --allow-root --fail-on error,warning --tag-display-limit 0 ./*.changes >lintian.log 2>&1 || status=$?
cat lintian.log
[ $status -eq 0 ] || { echo "packages: lintian has errors or warnings" >&2; exit 1; }
echo "packages: lintian has neither errors nor warnings"
