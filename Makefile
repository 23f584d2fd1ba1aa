# Everything a newcomer needs: make run, make test, make build. Each installs what is missing first (as root on Debian).

.PHONY: run test build bench package fuzz install-packages format lint check screenshots screenshots-french clean

build: install-packages
	cmake --preset release
	cmake --build --preset release
	tools/build_guide.sh build

run: build
	tools/run.sh

test: build
	cmake --preset sanitize
	cmake --build --preset sanitize
	tools/run_tests.sh

bench: build
	build/kestrel-bench --benchmark_repetitions=7 --benchmark_report_aggregates_only=true

# Runs each fuzzer for FUZZ_SECONDS (60); what it finds goes to build-fuzz/.
fuzz: install-packages
	cmake --preset fuzz
	cmake --build --preset fuzz
	tools/run_fuzzers.sh

# The Debian package, checked: build/kestrel-map-tool_VERSION_ARCHITECTURE.deb
package: build
	tools/install_packages.sh packages-packaging.txt
	tools/make_package.sh build

install-packages:
	tools/install_packages.sh

format:
	git ls-files '*.cpp' '*.h' | xargs clang-format-16 -i

# The layout that clang-format gives, and clang-tidy over every source that the release build compiles.
lint: build
	git ls-files '*.cpp' '*.h' | xargs clang-format-16 --dry-run --Werror
	python3 tools/run_clang_tidy.py build

check:
	python3 tools/check_tree.py

screenshots: build
	python3 tools/take_screenshots.py

# The same of a program that starts in French, into build-french/images.
screenshots-french: build
	cmake --preset release -B build-french -DKESTREL_LANGUAGE=2 -DKESTREL_BENCH=OFF
	cmake --build build-french --target kestrel-map-tool
	KESTREL_LANGUAGE=2 KESTREL_PROGRAM=$(CURDIR)/build-french/kestrel-map-tool python3 tools/take_screenshots.py build-french/images

clean:
	rm -rf build build-sanitize build-fuzz build-french
