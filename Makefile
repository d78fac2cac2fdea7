# The two commands of the README, and what they are made of. Each target installs the packages that
# it lacks (Debian 12; with sudo when not root).

SHELL := /bin/bash
PREFIX ?= /usr/local
RELEASE := build/release
DEV := build/dev
JOBS ?= $(shell nproc)
# X tests own a server each and mostly wait for it, so more of them run than there are cores.
TEST_JOBS ?= $(shell echo $$(($(JOBS) * 2)))
CTEST := --output-on-failure --no-tests=error --progress

.PHONY: run test deps build install deb test-package bench fuzz matrix hostile check format clean tour pictures animation

# Builds and starts the program on this desktop; where there is none, on a private one of its own,
# where it walks through what the program does.
run:
	@scripts/install-packages build run $(if $(DISPLAY),,desktop)
	@$(MAKE) --no-print-directory compile
	@if [ -n "$$DISPLAY" ]; then exec $(RELEASE)/Quorvel; else exec scripts/tour; fi

# The walk, also where there is a display.
tour:
	@scripts/install-packages build run desktop
	@$(MAKE) --no-print-directory compile
	@scripts/tour

deps:
	@scripts/install-packages build run desktop test lint bench

build:
	@scripts/install-packages build
	@$(MAKE) --no-print-directory compile

.PHONY: compile
compile:
	@cmake --preset release -DQUORVEL_TESTS=OFF >/dev/null
	@cmake --build $(RELEASE) --target Quorvel quorvel-interface quorvelctl -j $(JOBS)

# Everything: the logic under sanitizers, the program as built on private X servers.
test:
	@scripts/install-packages build run desktop test lint
	@$(MAKE) --no-print-directory check
	@cmake --preset dev >/dev/null
	@cmake --build $(DEV) --target sanitized_tests -j $(JOBS)
	@cmake --preset release -DQUORVEL_TESTS=ON >/dev/null
	@cmake --build $(RELEASE) --target desktop_tests -j $(JOBS)
	@ctest --test-dir $(DEV) -L 'unit|views|property' -j $(JOBS) $(CTEST)
	@ctest --test-dir $(DEV) -L contract -R /simulated -j $(JOBS) $(CTEST)
	@ctest --test-dir $(RELEASE) -L property $(CTEST)
	@scripts/check-install
	@scripts/check-docs
	@scripts/settings-pictures
	@# Window managers have races of their own on a busy machine: what fails must fail twice, and says so.
	@ctest --test-dir $(RELEASE) -L 'contract|x11' -j $(TEST_JOBS) --repeat until-pass:2 $(CTEST)

check:
	@scripts/check-layers
	@git ls-files -co --exclude-standard -- '*.cpp' '*.hpp' | xargs clang-format --dry-run --Werror

format:
	@git ls-files -co --exclude-standard -- '*.cpp' '*.hpp' | xargs clang-format -i

# Below $(DESTDIR)$(PREFIX). With the variables of GNUInstallDirs (CMAKE_INSTALL_LIBDIR …) in the
# cache of build/release, into other folders of it.
install: build
	@DESTDIR="$(if $(DESTDIR),$$(realpath -m "$(DESTDIR)"))" \
	    cmake --install $(RELEASE) --prefix "$(PREFIX)"

# build/quorvel_VERSION_ARCH.deb
deb:
	@scripts/install-packages package
	@JOBS=$(JOBS) scripts/build-package

# The package on a fresh Debian 12 in a folder: as root, with network.
test-package: deb
	@scripts/install-packages package-test
	@scripts/check-package build/quorvel_*.deb
	@scripts/first-day build/quorvel_*.deb

bench:
	@scripts/install-packages build run desktop bench
	@cmake --preset release -DQUORVEL_BENCHMARKS=ON >/dev/null
	@cmake --build $(RELEASE) --target Quorvel quorvel-bench quorvel-bench-floor quorvel-bench-interface -j $(JOBS)
	@scripts/bench

# Each fuzzer, or those that FUZZERS names, for FUZZ_SECONDS; scripts/fuzz says what is left where.
FUZZ_SECONDS ?= 60
fuzz:
	@scripts/install-packages build analysis
	@cmake --preset fuzz >/dev/null
	@cmake --build build/fuzz --target fuzzers -j $(JOBS)
	@scripts/fuzz $(FUZZ_SECONDS) $(FUZZERS)

# Every state of the settings, light and dark, in build/pictures/settings.
pictures:
	@scripts/install-packages build test desktop
	@cmake --preset release -DQUORVEL_TESTS=ON >/dev/null
	@cmake --build $(RELEASE) --target quorvel_settings_pictures -j $(JOBS)
	@scripts/settings-pictures

# The animation of the README: docs/pictures/tour.gif.
animation:
	@scripts/install-packages build run desktop animation
	@$(MAKE) --no-print-directory compile
	@scripts/animation

# What works on which window manager: tries it all and writes the table of the documentation.
matrix:
	@scripts/install-packages build run desktop test matrix
	@cmake --preset release -DQUORVEL_TESTS=ON >/dev/null
	@cmake --build $(RELEASE) --target quorvel-matrix -j $(JOBS)
	@$(RELEASE)/quorvel-matrix > build/window-managers.md
	@mv build/window-managers.md docs/window-managers.md
	@cat docs/window-managers.md

# Ten minutes in which everything goes wrong that can.
hostile:
	@scripts/install-packages build run desktop test matrix
	@cmake --preset release -DQUORVEL_TESTS=ON >/dev/null
	@cmake --build $(RELEASE) --target quorvel-hostile-day -j $(JOBS)
	@$(RELEASE)/quorvel-hostile-day

clean:
	@rm -rf build
