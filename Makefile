# The two everyday commands: `make run` and `make test`. Both install what is missing first.
BUILD_DIR ?= build
CMAKE_ARGS ?=
JOBS ?= $(shell nproc)

.PHONY: all deps configure build run test bench clean

all: build

deps:
	@scripts/install-deps.sh

$(BUILD_DIR)/build.ninja:
	cmake -S . -B $(BUILD_DIR) -G Ninja $(CMAKE_ARGS)

configure: deps $(BUILD_DIR)/build.ninja

build: configure
	cmake --build $(BUILD_DIR) -j $(JOBS)

run: build
	@scripts/run-example.sh $(BUILD_DIR)

test: build
	cd $(BUILD_DIR) && ctest --output-on-failure -j $(JOBS)

bench: build
	@echo "Benchmarks are in $(BUILD_DIR)/bench; see README.md"

clean:
	rm -rf $(BUILD_DIR)
