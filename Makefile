# The entry point. CMake and the scripts do all the work; see CMakePresets.json for more ways to build.

PREFIX ?= /usr/local
DESTDIR ?=
FUZZ_SECONDS ?= 60
SUITES ?= bookworm trixie
SCHEMAS ?= ../shared/schemas
BENCH_SETS ?= gpx11 camt053 bpmn20
SUITE ?= ../shared/xsts/xsts.tar.xz
EVERY ?= 1
SETS ?=

.PHONY: all run test debug asan tsan hardened pcre8 locales schemas schemas-bench damage xsts coverage fuzz bench ablation docs install \
  package-test bare-test packages format format-check tidy deps deps-all deps-packages clean help

all: deps
	cmake --preset release
	cmake --build --preset release

run: deps        ## build and run the purchase order example
	cmake --preset release
	cmake --build --preset release --target purchase_order
	build/release/examples/purchase_order

test: all        ## build everything and run the tests
	ctest --preset release

debug asan tsan: deps   ## run the tests without optimisation, or under sanitizers
	cmake --preset $@
	cmake --build --preset $@
	ctest --preset $@

hardened: deps   ## run the tests in a hardened build, on a stack of 1 MiB
	cmake --preset hardened
	cmake --build --preset hardened
	ulimit -s 1024 && ctest --preset hardened

pcre8: deps-all  ## run the tests with PCRE 8 in place of PCRE2
	cmake --preset pcre8
	cmake --build --preset pcre8
	ctest --preset pcre8

locales: all     ## run the tests in each of six locales
	scripts/locales build/release

schemas: deps-all   ## send the real SCHEMAS (SETS of them) and their documents through the generator; takes a quarter of an hour
	cmake --preset release
	cmake --build --preset release --target quillon9 quillon9_program
	tests/schemas/check_schemas.py --schemas $(SCHEMAS) --build build/release --source . $(SETS)

schemas-bench: deps-all   ## compare generated classes with CodeSynthesis XSD's, where that is installed, for BENCH_SETS
	cmake --preset release
	cmake --build --preset release --target quillon9 quillon9_program
	tests/schemas/bench_schemas.py --schemas $(SCHEMAS) --build build/release --source . $(BENCH_SETS)

damage: deps     ## damage documents of SCHEMAS (of SETS, ten by default), and check that failures name the damaged spots
	cmake --preset release
	cmake --build --preset release --target quillon9 quillon9_program
	tests/schemas/damage.py --schemas $(SCHEMAS) --build build/release --source . $(SETS)

xsts: deps       ## count which schemas and values of the W3C test SUITE are judged right; EVERY=10 takes each tenth
	cmake --preset release
	cmake --build --preset release --target xsts_schemas xsts_values
	mkdir -p build/xsts && tar -xf $(SUITE) -C build/xsts
	build/release/tests/generator/xsts_schemas build/xsts --generate --every $(EVERY)
	build/release/tests/generator/xsts_values build/xsts --every $(EVERY)

coverage: deps-all   ## report which lines of src/ the tests run
	cmake --preset coverage
	cmake --build --preset coverage
	find build/coverage -name '*.gcda' -delete
	ctest --preset coverage
	gcovr --root . --filter src/ --print-summary build/coverage

fuzz: deps-all   ## run each fuzz target for FUZZ_SECONDS
	cmake --preset fuzz
	cmake --build --preset fuzz
	scripts/fuzz $(FUZZ_SECONDS)

bench: deps      ## build and run the benchmarks
	cmake --preset release -DQUILLON9_BUILD_BENCHMARKS=ON
	cmake --build --preset release --target bench

ablation: deps-all   ## measure what each mechanism that remembers something gains; takes a quarter of an hour
	scripts/ablation

install: deps    ## install under PREFIX (default /usr/local)
	cmake --preset release
	cmake --build --preset release --target quillon9 quillon9_program
	DESTDIR="$(DESTDIR)" cmake --install build/release --prefix "$(PREFIX)"
	DESTDIR="$(DESTDIR)" cmake --install build/release --prefix "$(PREFIX)" --component doc

docs: deps-all    ## build the documentation site in build/docs/html
	scripts/check-docs

package-test: all   ## build and run a program outside the tree against the installed package
	scripts/package-test build/release

bare-test: ## build and test in a bare Debian chroot for each of SUITES; needs root and takes most of an hour
	scripts/install-deps --bare
	for suite in $(SUITES); do scripts/bare-machine-test $$suite || exit 1; done

packages: deps-packages   ## build Debian packages in build/packages/deb
	cmake --preset packages
	cmake --build --preset packages --target package

format: deps-all    ## format the code
	scripts/format

format-check: deps-all   ## report files that are not formatted
	scripts/format --check

tidy: deps-all      ## run clang-tidy
	cmake --preset debug
	scripts/tidy build/debug

deps:            ## install what is needed to build and test
	@scripts/install-deps

deps-all:
	@scripts/install-deps --all

deps-packages:
	@scripts/install-deps --packages

clean:           ## remove build/
	rm -rf build

help:            ## print this text
	@sed -n 's/^\([a-z0-9 -]*\):[^#]*## /make \1: /p' $(MAKEFILE_LIST)
