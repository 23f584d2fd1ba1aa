# Everything a newcomer needs: make run, make test, make build. Each installs what is missing first (as root on Debian).

.PHONY: run test build bench install-packages format lint check screenshots clean

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

install-packages:
	tools/install_packages.sh

format:
	git ls-files '*.cpp' '*.h' | xargs clang-format -i

# The layout that clang-format gives, and clang-tidy over every source that the release build compiles.
lint: build
	git ls-files '*.cpp' '*.h' | xargs clang-format --dry-run --Werror
	python3 tools/run_clang_tidy.py build

check:
	python3 tools/check_tree.py

screenshots: build
	python3 tools/take_screenshots.py

clean:
	rm -rf build build-sanitize
