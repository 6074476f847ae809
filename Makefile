# Nightvector: `make run` builds and starts the game, `make test` runs the whole suite,
# `make bench` measures frames. All install the Debian packages they need first.

BUILD_DIR  ?= build
BENCH_DIR  ?= build-bench
SANITIZE_DIR ?= build-sanitize
SOAK_SECONDS ?= 1800
STARTUP_STORM_STARTS ?= 300
BUILD_TYPE ?= RelWithDebInfo
JOBS       ?= $(shell nproc)

BUILD_PACKAGES := g++ make cmake pkg-config libsdl1.2-dev libsdl-image1.2-dev libsdl-mixer1.2-dev libgl-dev libx11-dev libxrandr-dev
TEST_PACKAGES  := libgtest-dev libbenchmark-dev xvfb xdotool x11-utils libxdamage-dev libgl1-mesa-dri python3 python3-pil python3-numpy python3-soundfile fonts-dejavu-core dpkg-dev file lintian desktop-file-utils appstream man-db
ASSET_PACKAGES := python3 python3-pil python3-numpy python3-soundfile fonts-dejavu-core
PACKAGE_PACKAGES := dpkg-dev file

.PHONY: all build run test test-sanitize startup-storm soak bench package assets build-deps test-deps asset-deps clean

all: build

build-deps:
	@tools/install-deps.sh $(BUILD_PACKAGES)

test-deps:
	@tools/install-deps.sh $(BUILD_PACKAGES) $(TEST_PACKAGES)

asset-deps:
	@tools/install-deps.sh $(ASSET_PACKAGES)

configure = cmake -S . -B $(BUILD_DIR) -DCMAKE_BUILD_TYPE=$(BUILD_TYPE) $(1)

build: build-deps
	$(call configure,)
	cmake --build $(BUILD_DIR) -j $(JOBS)

# Only the game itself is built here, whatever else the build directory is configured for.
run: build-deps
	$(call configure,)
	cmake --build $(BUILD_DIR) -j $(JOBS) --target nightvector
	./$(BUILD_DIR)/nightvector

# Runs $(2) in build directory $(1) with the crash ledger emptied first, then fails if any game the
# tests started died from a signal (tests/check-crash-ledger), even where the test itself passed on
# its second run. The command's own failure is reported after the ledger.
with_crash_ledger = rm -f $(1)/e2e-crashes.txt; \
	(cd $(1) && $(2)); status=$$?; \
	tests/check-crash-ledger $(1)/e2e-crashes.txt && exit $$status

# GL tests start a private Xvfb server (1280x720x24) each; see tests/xvfb-exec. Unit tests run
# once: one failure is a failure. End-to-end tests (label e2e) drive the real program through X
# on a busy machine, so a failed one runs once more before it counts as failed; a real fault
# fails both times. The long ones go first (their COST), so that no core waits on them at the end.
# The benchmarks are built too, so that the suite proves they compile; `make bench` runs them.
test: test-deps
	$(call configure,-DNIGHTVECTOR_TESTS=ON -DNIGHTVECTOR_BENCH=ON)
	cmake --build $(BUILD_DIR) -j $(JOBS)
	cd $(BUILD_DIR) && ctest --output-on-failure -j $(JOBS) -LE e2e
	$(call with_crash_ledger,$(BUILD_DIR),ctest --output-on-failure -j $(JOBS) -L e2e --repeat until-pass:2)
	$(MAKE) test-sanitize

# Every program of ours built with AddressSanitizer and UndefinedBehaviorSanitizer in a build
# directory of its own; runs every test program but the end-to-end ones, and beside them the
# two-minute input storm and the 30-start start-up storm against the sanitized game (labels
# e2e-storm and e2e-startup, run once). Any report ends the program that made it with status 23,
# so the test fails. Leaks inside system libraries are suppressed in tests/sanitize/lsan.supp.
# The Python data checks run no code of ours and are left out.
# intercept_tls_get_addr=0: this runtime takes a dynamic TLS block that malloc placed 16 bytes into
# a page for an old glibc's header and reads a bogus range from the words before it, so the leak
# check at exit dies in its tracer ("Tracer caught signal 11") wherever Mesa's block lands there.
# Mesa's shader cache is off as well: its writer thread, still storing as a program exits, is one
# more thread for that check to stop.
SANITIZE_ENV := \
	MESA_SHADER_CACHE_DISABLE=true \
	ASAN_OPTIONS=halt_on_error=1:exitcode=23:print_stacktrace=1:detect_leaks=1:strict_string_checks=1:detect_stack_use_after_return=1:intercept_tls_get_addr=0 \
	UBSAN_OPTIONS=halt_on_error=1:exitcode=23:print_stacktrace=1 \
	LSAN_OPTIONS=exitcode=23:print_suppressions=0:suppressions=$(CURDIR)/tests/sanitize/lsan.supp

test-sanitize: test-deps
	cmake -S . -B $(SANITIZE_DIR) -DCMAKE_BUILD_TYPE=$(BUILD_TYPE) -DNIGHTVECTOR_TESTS=ON -DNIGHTVECTOR_SANITIZE=ON
	cmake --build $(SANITIZE_DIR) -j $(JOBS)
	$(call with_crash_ledger,$(SANITIZE_DIR),$(SANITIZE_ENV) ctest --output-on-failure -j $(JOBS) -LE '^e2e$$' -E '^(MusicAsset|Assets)\.')

# The start-up storm: the normal build started STARTUP_STORM_STARTS times (300) to its intro and
# quit again, with an X client reading the screen every 2 ms beside it and another OpenGL
# program's window over every fourth intro; it prints the crashes it counted and fails on any. `make test` runs 30 starts of it. Part of `make soak`.
startup-storm: test-deps
	$(call configure,-DNIGHTVECTOR_TESTS=ON)
	cmake --build $(BUILD_DIR) -j $(JOBS) --target e2e_tests
	$(call with_crash_ledger,$(BUILD_DIR),NIGHTVECTOR_STARTUP_STORM_STARTS=$(STARTUP_STORM_STARTS) \
		NIGHTVECTOR_CRASH_LEDGER=$(abspath $(BUILD_DIR))/e2e-crashes.txt \
		$(CURDIR)/tests/xvfb-exec tests/e2e/e2e_tests --gtest_filter='StartupStorm.*')

# The start-up storm, then the input storm for half an hour (SOAK_SECONDS) against the normal
# build, with the game's resident memory sampled every 10 s into $(BUILD_DIR)/soak-rss.csv; after
# the first minute it must stay within 2 MB. Not part of `make test`.
soak: startup-storm
	tests/e2e/soak.sh $(BUILD_DIR)/tests/e2e/e2e_tests $(SOAK_SECONDS) $(BUILD_DIR)/soak-rss.csv

# A Release build of its own, run from the repository root (the game reads gfx/ and shaders/
# there) on a private Xvfb server; prints one table: the session scenarios, the micro-benchmarks,
# peak memory, and the start-up of the game built alongside (frame_bench depends on it).
bench: test-deps
	cmake -S . -B $(BENCH_DIR) -DCMAKE_BUILD_TYPE=Release -DNIGHTVECTOR_BENCH=ON
	cmake --build $(BENCH_DIR) -j $(JOBS) --target frame_bench
	tests/xvfb-exec ./$(BENCH_DIR)/bench/frame_bench

# The Debian package, $(BUILD_DIR)/nightvector_VERSION_ARCH.deb: the game built, installed into
# CPack's staging tree under /usr, stripped, with Depends worked out by dpkg-shlibdeps.
package: build-deps
	@tools/install-deps.sh $(PACKAGE_PACKAGES)
	$(call configure,)
	cmake --build $(BUILD_DIR) -j $(JOBS) --target nightvector packaging_files
	cmake --build $(BUILD_DIR) --target package

assets: asset-deps
	/usr/bin/python3 tools/make_assets.py

clean:
	rm -rf $(BUILD_DIR)
