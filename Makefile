# The front door. `make` alone prints what it offers: every target with a text behind two number signs.

# The folder that `make demo` looks at.
FOLDER ?= /usr/share
export FOLDER
# The folder that `make bench-scan` scans.
SCAN ?= /usr
export SCAN
# How many pictures and videos `make legacy-sample` makes up.
ROWS ?= 10000
# How much of the whole `make reliability` does.
SHARE ?= 1
# How many seconds `make fuzz` takes for each target.
FUZZ_SECONDS ?= 150
# How many tests and checks run at a time.
JOBS ?= $(shell nproc)

# Each target keeps the processors busy by itself.
.NOTPARALLEL:

sources = $(shell find infrastructure tools tests benchmarks examples -name '*.h' -o -name '*.cpp')

.PHONY: help
help:
	@sed -n 's/^\([a-z-]*\):.*## \(.*\)/make \1\t\2/p' Makefile | expand -t 27

.PHONY: demo
demo: build/release/build.ninja ## see what it is for, in a quarter of a minute after the build (FOLDER=/usr/share)
	@scripts/build-quietly release dbservice legacysample
	@scripts/demo/story.sh build/release/bin/dbservice "$$FOLDER"

.PHONY: demo-full
demo-full: build/release/build.ninja ## the same with all commands, at length
	@scripts/build-quietly release dbservice legacysample
	@scripts/demo/full.sh build/release/bin/dbservice "$$FOLDER"

.PHONY: legacy-sample
legacy-sample: build/release/build.ninja ## make up build/legacy/legacy-sample.dat, to try `dbservice migrate` on (ROWS=10000)
	cmake --build --preset release --target legacysample
	build/release/bin/legacysample build/legacy/legacy-sample.dat $(ROWS)

.PHONY: test
test: build/release/build.ninja ## build all but the benchmarks and run all tests
	cmake --build --preset release --target all all_verify_interface_header_sets
	ctest --preset release --parallel $(JOBS)

.PHONY: test-asan
test-asan: build/asan/build.ninja ## the same under the sanitizers for memory, leaks and undefined behaviour
	cmake --build --preset asan
	ctest --preset asan --parallel $(JOBS)

.PHONY: test-tsan
test-tsan: build/tsan/build.ninja ## the tests in which threads meet, under the sanitizer for data races
	cmake --build --preset tsan
	ctest --preset tsan --parallel $(JOBS)

.PHONY: test-windows
test-windows: build/mingw/build.ninja ## build for Windows and run all tests under Wine, then the tool on a real folder
	cmake --build --preset mingw
	ctest --preset mingw --parallel $(JOBS)
	scripts/test-windows-tool.sh build/mingw/bin/dbservice.exe

.PHONY: test-report
test-report: build/release/build.ninja ## look at a report page in a browser, and leave pictures in build/report
	@scripts/install-dependencies browser
	cmake --build --preset release --target dbservice
	mkdir -p build/report
	/usr/bin/python3 tests/report/page_test.py build/release/bin/dbservice build/report/scratch build/report

.PHONY: reliability
reliability: build/release/build.ninja ## harm the stores in every way we know, in ten to thirty minutes (SHARE=1)
	cmake --build --preset release --target reliability toolharm
	(printf 'reliability %s\n' crowds damage faults memory kills power fulldisk recovery threads && \
	    printf 'toolharm %s\n' damage kills names) | \
	    xargs -P $(JOBS) -I PART sh -c 'build/release/bin/PART --share $(SHARE)'

.PHONY: reliability-windows
reliability-windows: build/mingw/build.ninja ## the same under Wine, with 1,000 faults of the disk and 200 kills, in a quarter of an hour
	cmake --build --preset mingw --target reliability
	printf '%s\n' 'faults --share 0.06' 'kills --share 0.12' | \
	    xargs -P $(JOBS) -L 1 scripts/run-wine build/mingw/bin/reliability.exe

.PHONY: fuzz
fuzz: build/fuzz/build.ninja ## try texts, files, arguments and statements that a fuzzer makes up, ten minutes (FUZZ_SECONDS=150)
	cmake --build --preset fuzz
	tests/fuzz/make-samples build/fuzz
	printf '%s\n' arguments legacy map names query store text | \
	    xargs -P $(JOBS) -I TARGET tests/fuzz/run build/fuzz TARGET $(FUZZ_SECONDS)

.PHONY: build-clang
build-clang: build/clang/build.ninja ## build the libraries and their tests with clang, too
	cmake --build --preset clang

.PHONY: package
package: build/package/build.ninja ## make Debian packages of the libraries and the tool, build/package/*.deb
	cmake --build --preset package

.PHONY: test-package
test-package: package checks-packages ## check them, install them into a root of their own, use them, remove them
	tests/package/try-packages build/package

.PHONY: bench
bench: benchmark ## measure the library beside plain use of the SQLite C interface
	$(benchmark)

.PHONY: bench-large
bench-large: benchmark ## the same with a million records
	$(benchmark) --rows 1000000

.PHONY: bench-instructions
bench-instructions: benchmark checks-packages ## count instructions and fail if the library needs too many
	scripts/bench-instructions.sh build/release

.PHONY: bench-scan
bench-scan: build/release/build.ninja ## measure `dbservice` on a real folder beside a plain program, and fail above its limits (SCAN=/usr)
	cmake --build --preset release --target scan_benchmark
	build/release/bin/scan_benchmark --strict "$$SCAN"

.PHONY: docs
docs: build/docs/build.ninja ## make the API pages with the first programs, build/docs/html/index.html
	cmake --build --preset docs

.PHONY: format
format: checks-packages ## format the sources
	clang-format -i $(sources)

.PHONY: format-check
format-check: checks-packages ## fail if a source is not formatted
	clang-format --dry-run --Werror $(sources)

.PHONY: tidy
tidy: build/tidy/build.ninja checks-packages ## run clang-tidy over all sources; takes half an hour and more
	run-clang-tidy -quiet -p build/tidy -j $(JOBS) '$(CURDIR)/(infrastructure|tools|tests|benchmarks)/'

.PHONY: tidy-changes
tidy-changes: build/tidy/build.ninja checks-packages ## the same over what changed (since SINCE, or in the last day)
	scripts/tidy-changes build/tidy $(JOBS)

.PHONY: install-dependencies
install-dependencies: ## install every Debian package that building, testing and checking need
	scripts/install-dependencies

.PHONY: build-packages checks-packages windows-packages
build-packages:
	@scripts/install-dependencies build
checks-packages:
	@scripts/install-dependencies checks
windows-packages:
	@scripts/install-dependencies windows

benchmark = build/release/bin/databaseservice_benchmark
.PHONY: benchmark
benchmark: build/release/build.ninja
	cmake --build --preset release --target databaseservice_benchmark

build/clang/build.ninja build/docs/build.ninja build/fuzz/build.ninja: | checks-packages
build/mingw/build.ninja: | windows-packages
build/%/build.ninja: CMakePresets.json | build-packages
	cmake --preset $*
