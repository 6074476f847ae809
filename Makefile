# Nightvector: `make run` builds and starts the game, `make test` runs the whole suite.
# Both install the Debian packages they need first.

BUILD_DIR  ?= build
BUILD_TYPE ?= RelWithDebInfo
JOBS       ?= $(shell nproc)

BUILD_PACKAGES := g++ make cmake pkg-config libsdl1.2-dev libsdl-image1.2-dev libsdl-mixer1.2-dev libgl-dev
TEST_PACKAGES  := libgtest-dev libbenchmark-dev xvfb xdotool libgl1-mesa-dri python3 python3-pil python3-numpy python3-soundfile fonts-dejavu-core
ASSET_PACKAGES := python3 python3-pil python3-numpy python3-soundfile fonts-dejavu-core

.PHONY: all build run test assets build-deps test-deps asset-deps clean

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

# GL tests start a private Xvfb server (1280x720x24) each; see tests/xvfb-exec.
test: test-deps
	$(call configure,-DNIGHTVECTOR_TESTS=ON)
	cmake --build $(BUILD_DIR) -j $(JOBS)
	cd $(BUILD_DIR) && ctest --output-on-failure -j $(JOBS)

assets: asset-deps
	/usr/bin/python3 tools/make_assets.py

clean:
	rm -rf $(BUILD_DIR)
