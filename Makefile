# The tasks of a working day on a Debian 12 machine; CMake does the building. `make help` lists them.

SHELL := /bin/bash
.SHELLFLAGS := -eu -o pipefail -c
.DEFAULT_GOAL := help

PROJECT ?= examples/Brauerei.kvs
# KV_TEST_SECONDS lengthens what a test can go on with for ever: several programs on one file,
# crashes, fuzzing.
FUZZ_SECONDS ?= $(or $(KV_TEST_SECONDS),10)
PREFIX ?= /usr/local
TABLE ?= TchrTrends
JOBS := $(shell nproc)

BUILD := build/release
OPTIMISED := build/optimised
PACKAGES := build/packages
# What `make run` needs; the tests and benchmarks are left to the tasks that use them.
RUN_TARGETS := kvstudio KVArchivEditor kvs

heading = @printf '\n== %s\n' "$(1)"

.PHONY: help run build test test-release test-engine test-fuzz test-asan test-windows format \
	check-format tidy pictures manual optimised bench install package test-package clean

help: ## Show the tasks
	@echo "make TASK, where TASK is one of:"
	@sed -n 's/^\([a-z-]*\):.*## /\1|/p' $(MAKEFILE_LIST) | \
	while IFS='|' read -r task text; do printf '  %-14s %s\n' "$$task" "$$text"; done
	@echo "Variables: PROJECT=$(PROJECT) FUZZ_SECONDS=$(FUZZ_SECONDS) PREFIX=$(PREFIX) TABLE=$(TABLE)"

run: ## Build the studio and open PROJECT in it
	@scripts/install-packages.sh build run
	@if [ -n "$${WAYLAND_DISPLAY-}" ] && [ -z "$${DISPLAY-}" ]; then \
		scripts/install-packages.sh wayland; fi
	@cmake --preset release --log-level=WARNING
	@cmake --build $(BUILD) --parallel $(JOBS) --target $(RUN_TARGETS)
	@scripts/run-studio.sh $(BUILD) '$(PROJECT)'

build: ## Build everything, optimised, in build/release
	@scripts/install-packages.sh build
	@cmake --preset release --log-level=WARNING
	@cmake --build $(BUILD) --parallel $(JOBS)

# Each stage is there for what no other sees (CONTRIBUTING.md). The fuzz targets belong to the
# sanitizers' build. Its tests come last, so that their result closes the output.
test: test-release test-engine test-fuzz test-asan ## Run every check: release, engine alone, fuzzing, sanitizers

test-release: ## Build with warnings as errors and run the tests
	@scripts/install-packages.sh build run test
	$(call heading,Release build and tests)
	@cmake --preset release -DKV_WARNINGS_AS_ERRORS=ON --log-level=WARNING
	@cmake --build $(BUILD) --parallel $(JOBS)
	@ctest --preset release --parallel $(JOBS)

# All tests of the engine are in the other stages; those of kvs go through every library of this one.
test-engine: ## Build the libraries that need no Qt, and kvs with its tests, without Qt
	@scripts/install-packages.sh build test
	$(call heading,File engine and recordsets without Qt)
	@cmake --preset engine-only -DKV_WARNINGS_AS_ERRORS=ON --log-level=WARNING
	@cmake --build build/engine-only --parallel $(JOBS) --target libraries kvs test_tools
	@ctest --preset engine-only --parallel $(JOBS) --label-regex tools

test-fuzz: ## Fuzz each target for FUZZ_SECONDS under the sanitizers
	@scripts/install-packages.sh build test
	$(call heading,Fuzzing ($(FUZZ_SECONDS) s a target))
	@cmake --preset asan -DKV_WARNINGS_AS_ERRORS=ON --log-level=WARNING
	@cmake --build build/asan --parallel $(JOBS) --target fuzzers
	@scripts/run-fuzz.sh build/asan $(FUZZ_SECONDS)

test-asan: ## Build with clang 16 and run the tests under the address and undefined sanitizers
	@scripts/install-packages.sh build run test
	$(call heading,Tests under the address and undefined sanitizers)
	@cmake --preset asan -DKV_WARNINGS_AS_ERRORS=ON --log-level=WARNING
	@cmake --build build/asan --parallel $(JOBS)
	@LSAN_OPTIONS=suppressions=$(CURDIR)/scripts/leaks-outside.txt:print_suppressions=0 \
		ctest --preset asan --parallel $(JOBS)

# Apart from `make test`: it compiles the engine once more, and Wine takes its time.
test-windows: ## Build the engine and kvs for Windows and run their tests under Wine
	@scripts/install-packages.sh build windows
	$(call heading,The engine and kvs for Windows)
	@cmake --preset windows -DKV_WARNINGS_AS_ERRORS=ON --log-level=WARNING
	@cmake --build build/windows --parallel $(JOBS)
	@ctest --preset windows --parallel $(JOBS)

format: ## Format all C++ files
	@scripts/install-packages.sh format
	@scripts/sources.sh | xargs -r clang-format -i

check-format: ## Fail when a C++ file is not formatted
	@scripts/install-packages.sh format
	@scripts/check-format.sh

# Nothing is compiled for it: the flags of the clang build are those that clang-tidy understands.
tidy: ## Run clang-tidy over the product's code, changed files first
	@scripts/install-packages.sh build test tidy
	$(call heading,clang-tidy)
	@cmake --preset clang --log-level=WARNING
	@cmake --build build/clang --parallel $(JOBS) --target autogen
	@scripts/tidy.sh build/clang

pictures: ## Make the pictures in docs/images anew from the running program
	@scripts/install-packages.sh build run pictures
	@cmake --preset release --log-level=WARNING
	@cmake --build $(BUILD) --parallel $(JOBS)
	@scripts/make-pictures.sh $(BUILD)

manual: ## Write the manual as HTML and PDF, in build/manual
	@scripts/install-packages.sh build run
	@cmake --preset release --log-level=WARNING
	@cmake --build $(BUILD) --parallel $(JOBS) --target kv_make_manual
	@QT_QPA_PLATFORM=offscreen $(BUILD)/bin/kv_make_manual docs/images build/manual
	@echo 'build/manual: html/index.html, manual-de.pdf, manual-en.pdf'

optimised: ## Build what is installed and measured, in build/optimised
	@scripts/install-packages.sh build
	@cmake --preset optimised --log-level=WARNING
	@cmake --build $(OPTIMISED) --parallel $(JOBS)

bench: optimised ## Measure: Google Benchmark programs, and kvs dump beside mdb-export
	@scripts/install-packages.sh bench
	@for program in $(OPTIMISED)/bin/bench_*; do [ ! -x "$$program" ] || "$$program"; done
	@KVS=$(OPTIMISED)/bin/kvs bench/compare_dump.sh '$(PROJECT)' '$(TABLE)'

# Nothing but files below PREFIX: whoever may write there needs no root, and what the programs need
# to run is in README.md.
install: ## Build and install under PREFIX
	@cmake --preset optimised -DKV_BENCH=OFF --log-level=WARNING
	@cmake --build $(OPTIMISED) --parallel $(JOBS)
	@cmake --install $(OPTIMISED) --prefix '$(PREFIX)'

package: ## Build the Debian packages, in build/packages, and have them checked
	@scripts/install-packages.sh build package
	$(call heading,Debian packages)
	@scripts/make-package.sh $(PACKAGES)
	@lintian --fail-on error,warning --info $(PACKAGES)/*.changes

test-package: package ## Install, use and remove the packages in a bare Debian 12 system
	@scripts/install-packages.sh package-test
	$(call heading,The packages in a bare system)
	@scripts/test-packages.sh $(PACKAGES)

clean: ## Remove everything that was built
	@rm -rf build
