#!/bin/sh
# needed_libraries.sh LIBRARY - beside itself it needs the C library, libqrencode and the platform,
# and it refers to no C++ run-time function.
set -eu
status=0
for needed in $(readelf -d "$1" | sed -n 's/.*(NEEDED).*\[\(.*\)\]/\1/p'); do
    case $needed in
    libc.so.* | ld-linux*.so.* | libqrencode.so.* | libvboard.so*) ;;
    *) echo "needs $needed"; status=1 ;;
    esac
done
runtime=$(nm -D --undefined-only "$1" | awk '{print $NF}' |
    grep -E '^(_Z|__cxa_|__gxx_|_Unwind_)' | grep -vE '^__cxa_(finalize|atexit)(@|$)' || true)
[ -z "$runtime" ] || { echo "refers to the C++ run-time library:"; echo "$runtime"; status=1; }
exit $status
