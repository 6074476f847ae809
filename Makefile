# Nightvector: `make run` builds and starts the game, `make test` runs the whole suite,
# `make bench` measures frames. All install the Debian packages they need first.

BUILD_DIR  ?= build
BENCH_DIR  ?= build-bench
BUILD_TYPE ?= RelWithDebInfo
JOBS       ?= $(shell nproc)

BUILD_PACKAGES := g++ make cmake pkg-config libsdl1.2-dev libsdl-image1.2-dev libsdl-mixer1.2-dev libgl-dev
TEST_PACKAGES  := libgtest-dev libbenchmark-dev xvfb xdotool libgl1-mesa-dri python3 python3-pil python3-numpy python3-soundfile fonts-dejavu-core
ASSET_PACKAGES := python3 python3-pil python3-numpy python3-soundfile fonts-dejavu-core

.PHONY: all build run test bench assets build-deps test-deps asset-deps clean

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

# GL tests start a private Xvfb server (1280x720x24) each; see tests/xvfb-exec. End-to-end tests
# drive the real program through X on a busy machine, so a failed test runs once more before it
# counts as failed; a real fault fails both times.
# The benchmarks are built too, so that the suite proves they compile; `make bench` runs them.
test: test-deps
	$(call configure,-DNIGHTVECTOR_TESTS=ON -DNIGHTVECTOR_BENCH=ON)
	cmake --build $(BUILD_DIR) -j $(JOBS)
	cd $(BUILD_DIR) && ctest --output-on-failure -j $(JOBS) --repeat until-pass:2

# A Release build of its own, run from the repository root (the game reads gfx/ and shaders/
# there) on a private Xvfb server; prints one table.
bench: test-deps
	cmake -S . -B $(BENCH_DIR) -DCMAKE_BUILD_TYPE=Release -DNIGHTVECTOR_BENCH=ON
	cmake --build $(BENCH_DIR) -j $(JOBS) --target frame_bench
	tests/xvfb-exec ./$(BENCH_DIR)/bench/frame_bench

assets: asset-deps
	/usr/bin/python3 tools/make_assets.py

clean:
	rm -rf $(BUILD_DIR)
