#!/bin/sh
# Counts which lines of a folder (mapdata) the unit tests run, in build-coverage/, and prints the share of each file and
# every line that never ran. They replay the fuzzers' kept inputs, and processes that a test kills count too.
set -eu
cd "$(dirname "$0")/.."
folder=${1:-mapdata}
build=build-coverage
cmake -G Ninja -S . -B $build -DCMAKE_BUILD_TYPE=Debug -DCMAKE_CXX_COMPILER=clang++ -DKESTREL_DESKTOP=OFF \
    "-DCMAKE_CXX_FLAGS_DEBUG=-O1 -g1 -fprofile-instr-generate -fcoverage-mapping -mllvm -runtime-counter-relocation"
cmake --build $build --target unit_tests
cd $build
rm -f counts-*.profraw
LLVM_PROFILE_FILE="$PWD/counts-%c%p.profraw" ./unit_tests --gtest_brief=1
version=$(clang++ -dumpversion | cut -d. -f1)
"llvm-profdata-$version" merge -o counts counts-*.profraw
"llvm-cov-$version" export ./unit_tests -instr-profile=counts -format=lcov | awk -v folder="/$folder/" '
    /^SF:/ { file = index($0, folder) ? substr($0, index($0, folder) + 1) : "" }
    /^DA:/ && file { split(substr($0, 4), part, ","); line = file ":" part[1]; all[line] = file; ran[line] += part[2] }
    END {
        for (line in all) { lines[all[line]]++; if (!ran[line]) { missed[all[line]]++; print line " never ran" | "sort -V" } }
        close("sort -V")
        for (file in lines) { total += lines[file]; none += missed[file]
            printf "%5.1f %% of %4d lines of %s\n", 100 - 100 * missed[file] / lines[file], lines[file], file }
        printf "%5.1f %% of %4d lines\n", 100 - 100 * none / total, total
    }'
