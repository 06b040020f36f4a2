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
. tools/setup/bare_root.sh

bare_root_arguments prove_bare.sh "$@"
bare_root_make
git clone -q --no-hardlinks . "$root/nvrhal"
bare_root_run ./demo.sh || true
bare_root_run ./test.sh "${rest[@]}" || true
exit $status
