# Set-up, build, tests and the example job; installs what a fresh Debian machine lacks.
BUILD ?= build
JOBS ?= 2
PACKAGES = g++ make cmake libgtest-dev libgmock-dev libbenchmark-dev python3 python3-numpy python3-gemmi pkg-config libcairo2-dev
SUDO := $(shell [ "$$(id -u)" = 0 ] || echo sudo)

.PHONY: all deps build test example bench format clean

all: build

deps:
	@missing=""; for p in $(PACKAGES); do \
	  dpkg -s $$p >/dev/null 2>&1 || missing="$$missing $$p"; done; \
	if [ -n "$$missing" ]; then \
	  echo "Installing:$$missing"; \
	  $(SUDO) apt-get update && $(SUDO) env DEBIAN_FRONTEND=noninteractive apt-get install -y $$missing; \
	fi

build: deps
	@[ -f $(BUILD)/CMakeCache.txt ] || cmake -S . -B $(BUILD) -DCMAKE_BUILD_TYPE=Release
	cmake --build $(BUILD) -j $(JOBS)

test: build
	ctest --test-dir $(BUILD) --output-on-failure -j $(JOBS)

example: build
	@sh examples/run-example.sh $(abspath $(BUILD))/corvinet

bench: build
	$(BUILD)/corvinet_bench

format:
	clang-format -i $$(git ls-files '*.cpp' '*.h')

clean:
	rm -rf $(BUILD)
