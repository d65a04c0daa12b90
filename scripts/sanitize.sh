#!/usr/bin/env bash
# The sanitizer stage: the whole suite under AddressSanitizer + UndefinedBehavior
# Sanitizer (LeakSanitizer included), a bounded run of every fuzz target, and the
# threaded tests (suites named *Concurrency*) under ThreadSanitizer.
#   scripts/sanitize.sh [asan|fuzz|tsan]...   (default: all three)
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/setup-deps.sh
stages=("$@")
[ ${#stages[@]} -eq 0 ] && stages=(asan fuzz tsan)
fuzz_seconds=${TW_FUZZ_SECONDS:-15}

for stage in "${stages[@]}"; do
  case "$stage" in
    asan)
      CC=clang CXX=clang++ scripts/build.sh build-asan -DCMAKE_BUILD_TYPE=Debug \
        -DTW_SANITIZE=address -DTW_BUILD_FUZZ=ON -DTW_BUILD_BENCH=OFF
      ASAN_OPTIONS=detect_leaks=1:abort_on_error=1 UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1 \
        ctest --test-dir build-asan --output-on-failure -j "${TW_JOBS:-2}"
      ;;
    fuzz)
      CC=clang CXX=clang++ scripts/build.sh build-asan -DCMAKE_BUILD_TYPE=Debug \
        -DTW_SANITIZE=address -DTW_BUILD_FUZZ=ON -DTW_BUILD_BENCH=OFF
      while read -r target; do
        [ -n "$target" ] || continue
        bin=$(find build-asan -type f -name "$target" -perm -u+x | head -n1)
        corpus_src=$(find tests -type d -path "*/fuzz/corpus/$target" | head -n1)
        work=$(mktemp -d)
        [ -n "$corpus_src" ] && cp -r "$corpus_src"/. "$work"/
        echo "== fuzz $target for ${fuzz_seconds}s"
        "$bin" -max_total_time="$fuzz_seconds" -rss_limit_mb=2048 -print_final_stats=0 "$work" 2>&1 | tail -n 3
        rm -rf "$work"
      done < build-asan/fuzz-targets.txt
      ;;
    tsan)
      CC=clang CXX=clang++ scripts/build.sh build-tsan -DCMAKE_BUILD_TYPE=RelWithDebInfo \
        -DTW_SANITIZE=thread -DTW_BUILD_BENCH=OFF
      TSAN_OPTIONS=halt_on_error=1:second_deadlock_stack=1 \
        ctest --test-dir build-tsan --output-on-failure -j "${TW_JOBS:-2}" -R Concurrency --no-tests=ignore
      ;;
    *) echo "unknown stage $stage" >&2; exit 2 ;;
  esac
done
