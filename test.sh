#!/bin/bash
# Build and test everything, from a bare Debian 12.
#
#   ./test.sh               the legs dev and seams
#   ./test.sh --all         what a change is held to, in about 40 minutes on two processors
#   ./test.sh --only LEGS   these legs, in this order, with commas between their names
#   tools/further_legs.sh   the other ones, which take longer: before a release
#
# Legs of --all:
#   dev           library and board optimised, with debug information: every test
#   seams         dependencies run one way, and no word is used that was given up; reads dev's build
#   format        house format
#   asan          address and undefined-behaviour sanitizers, every test of what is built with them
#   packages      Debian packages, and applications outside the tree against them
#   port          platforms from outside the tree, as porters have them
#   mutants       whether the conformance suite names what fifty platforms break; builds dev's suite
#   musl          32-bit ARM with a small C library and no C++ run-time library: the main operations,
#                 and the conformance suite on the example's adapter
#   linux-nvrec   the recorder without the board in software
#   reference     the headers as HTML, without a gap
#   browser       the board's page in chromium; builds dev's recorder and vboard
#
# Further legs:
#   release       what is shipped, every test, and every benchmark once. The preset sets the build type
#                 alone, so this is what -DCMAKE_BUILD_TYPE=Release gives as well.
#   tsan          thread sanitizer, every test
#   subdirectory  a project of others that takes the sources in, with add_subdirectory and FetchContent
#   m32           32-bit on this PC: unit, trace and abi tests
#   armhf         32-bit ARM under an emulator: unit, trace and abi tests
#   clang         another compiler: everything built; unit, trace and abi tests
#   lint          static analysis
#
# Every leg runs even when one before it failed; the last line sums all tests up, and the exit
# status is 0 only when every leg passed.
set -uo pipefail
cd "$(dirname "$0")"

all_legs=dev,seams,format,asan,packages,port,mutants,musl,linux-nvrec,reference,browser
further_legs=release,tsan,subdirectory,m32,armhf,clang,lint
case "$#:${1:-}" in
0:) legs=dev,seams ;;
1:--all) legs=$all_legs ;;
2:--only) legs=$2 ;;
*) legs= ;;
esac
IFS=, read -ra legs <<<"$legs"
known=${#legs[@]}
for name in "${legs[@]}"; do
    [[ ,$all_legs,$further_legs, == *,$name,* ]] || known=0
done
[ "$known" -gt 0 ] || { echo "usage: $0 [--all | --only LEG,LEG...]; legs: $all_legs,$further_legs" >&2; exit 2; }

jobs=$(nproc)
# Cameras and users take their time: without a sanitizer the tests wait for two thirds of theirs.
waiting_jobs=$((jobs + (jobs + 1) / 2))
logs=out/test
mkdir -p $logs
passed=0
failed=0
bad_legs=()

# leg NAME COMMAND...: run it, print its time, remember a failure.
leg() {
    local name=$1 begin=$SECONDS failed_before=$failed
    shift
    echo "=== $name"
    if "$@"; then
        echo "=== $name: passed, $((SECONDS - begin)) s"
    else
        echo "=== $name: FAILED, $((SECONDS - begin)) s"
        bad_legs+=("$name")
        [ $failed -gt $failed_before ] || failed=$((failed + 1)) # it failed outside its tests
    fi
}

# Run a command with its output in a log; show the end of the log when it fails.
quietly() {
    local log=$logs/$1.log
    shift
    "$@" >"$log" 2>&1 && return 0
    tail -n 60 "$log"
    echo "(whole log: $log)"
    return 1
}

build() { # preset, further cmake arguments
    local preset=$1
    shift
    quietly "configure-$preset" cmake --preset "$preset" "$@" &&
        quietly "build-$preset" cmake --build --preset "$preset" -j "$jobs"
}

# Run a preset's tests behind a command prefix and add its counts to the sum.
run_tests() { # preset, tests at once, prefix...
    local preset=$1 at_once=$2
    shift 2
    count_tests "$preset" "$@" ctest --preset "$preset" -j "$at_once" --no-tests=error
}

# Run a ctest command and add its counts to the sum.
count_tests() { # name of the log, command...
    local log=$logs/ctest-$1.log status
    shift
    "$@" >"$log" 2>&1
    status=$?
    local closing
    closing=$(grep -E '^[0-9]+% tests passed, [0-9]+ tests failed out of [0-9]+' "$log" | tail -n 1)
    if [[ $closing =~ ,\ ([0-9]+)\ tests\ failed\ out\ of\ ([0-9]+) ]]; then
        failed=$((failed + BASH_REMATCH[1]))
        passed=$((passed + BASH_REMATCH[2] - BASH_REMATCH[1]))
    else
        failed=$((failed + 1)) # the runner itself did not get to its end
    fi
    if [ $status -eq 0 ]; then
        tail -n 4 "$log"
    else
        grep -vE ' (Passed|Start) ' "$log" | tail -n 150
        echo "(whole log: $log)"
    fi
    return $status
}

dev_leg() { build dev && run_tests dev "$waiting_jobs"; }

seams_leg() { tools/check_seams.sh build/dev && tools/check_words.sh; }

# The benchmarks in their shortest form, to see that they run; figures want a quiet machine. Their
# reports are in the log.
run_benchmarks() {
    local bin=build/release/bin clips=build/bench-clips
    $bin/bench_intake && $bin/bench_pool && $bin/bench_text && $bin/bench_gui &&
        $bin/bench_wall --clips $clips --mix 16x360p-h264 --runs 1 &&
        $bin/bench_snapshot --clips $clips --count 5 --runs 1
}

release_leg() {
    local result=0
    build release || return 1
    run_tests release "$waiting_jobs" || result=1
    quietly benchmarks run_benchmarks || result=1
    return $result
}

# The preset lets the agent, which is preloaded, stand before the sanitizer's library.
asan_leg() { build asan && run_tests asan "$jobs"; }

# The thread sanitizer wants its memory map where it expects it. Kernels that spread addresses over
# more than 28 bits place it elsewhere now and then; fixed addresses cure that.
tsan_prefix() {
    local probe=$logs/tsan-probe bits
    bits=$(cat /proc/sys/vm/mmap_rnd_bits 2>/dev/null || echo 0)
    echo 'int main(){return 0;}' | g++ -fsanitize=thread -x c++ -o $probe - || return 1
    if [ "$bits" -le 28 ] && $probe >/dev/null 2>&1; then
        echo env
    elif setarch -R $probe >/dev/null 2>&1; then
        echo setarch -R
    else
        echo "test.sh: the thread sanitizer does not run on this kernel, not with fixed addresses either" >&2
        return 1
    fi
}

tsan_leg() {
    local prefix options="halt_on_error=1 second_deadlock_stack=1"
    prefix=$(tsan_prefix) || return 1
    [ -f tests/support/tsan.supp ] && options+=" suppressions=$PWD/tests/support/tsan.supp"
    # Word splitting is meant: the prefix may be two words. The tests inherit the fixed addresses.
    build tsan && run_tests tsan "$jobs" $prefix env "TSAN_OPTIONS=$options"
}

m32_leg() { build m32 && run_tests m32 "$jobs"; }

armhf_leg() { build armhf && run_tests armhf "$jobs"; }

musl_leg() { quietly musl tools/musl.sh "$jobs"; }

clang_leg() { build clang && run_tests clang "$jobs"; }

linux_nvrec_leg() { quietly linux-nvrec tools/linux_nvrec.sh "$jobs"; }

packages_leg() { quietly packages tools/packages/build.sh; }

port_leg() { quietly port tools/port.sh "$jobs"; }

# The suite mostly waits, so that several runs of it share a processor.
mutants_leg() {
    quietly configure-dev cmake --preset dev &&
        quietly build-mutants cmake --build --preset dev -j "$jobs" --target check-conformance-mutants nvrhal-conformance &&
        quietly mutants tools/conformance_mutants.sh --jobs $((2 * jobs)) build/dev/mutants build/dev/bin/nvrhal-conformance &&
        tail -n 1 $logs/mutants.log
}

subdirectory_leg() {
    local result=0 way build
    for way in add_subdirectory FetchContent; do
        build=build/subdirectory/$way
        quietly configure-subdirectory-$way cmake -S tests/subdirectory -B $build -G Ninja \
            -DCMAKE_BUILD_TYPE=Debug -DBY=$way &&
            quietly build-subdirectory-$way cmake --build $build -j "$jobs" &&
            count_tests subdirectory-$way ctest --test-dir $build --output-on-failure --no-tests=error || result=1
    done
    return $result
}

format_leg() {
    find include src platform conformance apps tests bench tools examples -type f ! -path conformance/streams.c \
        \( -name '*.h' -o -name '*.c' -o -name '*.cpp' \) -print0 |
        xargs -0 clang-format --dry-run -Werror
}

# What is shipped or run by users; tests and benchmarks are held to the compiler's warnings.
lint_leg() {
    # clang-tidy cannot read gcc's precompiled headers, so it gets the commands of the clang preset.
    quietly configure-clang cmake --preset clang &&
        quietly clang-tidy run-clang-tidy -quiet -p build/clang -j "$jobs" "^$PWD/(src|platform|apps)/.*"
}

reference_leg() {
    quietly configure-dev cmake --preset dev && quietly build-reference cmake --build --preset dev --target reference &&
        quietly reference tests/docs/reference_is_whole.sh build/dev/reference
}

# One browser at a time: it and the recorder that it looks at want both processors.
browser_leg() {
    quietly configure-dev cmake --preset dev &&
        quietly build-browser cmake --build --preset dev -j "$jobs" --target page_tests_need &&
        count_tests browser ctest --preset dev -C browser -L '^browser$' --no-tests=error
}

begin=$SECONDS
groups=(build test)
for name in "${legs[@]}"; do
    case $name in
    dev | seams) ;;
    release | clang) groups+=(check bench) ;;
    *) groups+=(check) ;;
    esac
done
tools/setup/install.sh "${groups[@]}" || { echo "test.sh: the set-up failed" >&2; exit 1; }

for name in "${legs[@]}"; do
    leg "$name" "${name//-/_}_leg"
done

echo "time: $((SECONDS - begin)) s"
[ "$legs" != $all_legs ] || echo "not run: ${further_legs//,/, } (tools/further_legs.sh)"
[ ${#bad_legs[@]} -eq 0 ] || printf 'failed leg: %s\n' "${bad_legs[@]}"
echo "$passed passed, $failed failed"
[ ${#bad_legs[@]} -eq 0 ] && [ $failed -eq 0 ]
