# Set-up, build, tests and the example job; installs what a fresh Debian machine lacks.
BUILD ?= build
JOBS ?= 2
PACKAGES = g++ make cmake libgtest-dev libgmock-dev libbenchmark-dev python3 python3-numpy python3-gemmi pkg-config libcairo2-dev
# What `make bench` needs besides: perf for the profile breakdown, OpenBLAS for
# the comparison of the accumulation with a BLAS rank-k update.
BENCH_PACKAGES = linux-perf libopenblas-dev
SUDO := $(shell [ "$$(id -u)" = 0 ] || echo sudo)

# The sanitizer build (address and undefined behaviour) used by the fuzzer and by CI.
SANITIZE_BUILD ?= build-sanitize
# The mutation fuzzer: how long it runs and where it keeps new failures.
FUZZ_SECONDS ?= 600
FUZZ_FINDINGS ?= fuzz-findings

.PHONY: all deps bench-deps build test example bench format clean sanitize fuzz

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

bench-deps:
	@missing=""; for p in $(BENCH_PACKAGES); do \
	  dpkg -s $$p >/dev/null 2>&1 || missing="$$missing $$p"; done; \
	if [ -n "$$missing" ]; then \
	  echo "Installing:$$missing"; \
	  $(SUDO) apt-get update && $(SUDO) env DEBIAN_FRONTEND=noninteractive apt-get install -y $$missing; \
	fi

# The benchmarks, then where the time of a cycle of the large job goes.
bench: bench-deps build
	$(BUILD)/corvinet_bench
	python3 bench/profile_breakdown.py $(BUILD)/corvinet_bench

sanitize: deps
	@[ -f $(SANITIZE_BUILD)/CMakeCache.txt ] || cmake -S . -B $(SANITIZE_BUILD) \
	  -DCMAKE_BUILD_TYPE=Release -DCORVINET_SANITIZE=ON -DCORVINET_BENCH=OFF
	cmake --build $(SANITIZE_BUILD) -j $(JOBS)

# Mutated jobs run on the sanitizer build for FUZZ_SECONDS; each new kind of
# failure is kept as a job folder under FUZZ_FINDINGS (see tests/fuzz).
fuzz: deps
	@[ -f $(SANITIZE_BUILD)/CMakeCache.txt ] || cmake -S . -B $(SANITIZE_BUILD) \
	  -DCMAKE_BUILD_TYPE=Release -DCORVINET_SANITIZE=ON -DCORVINET_BENCH=OFF
	cmake --build $(SANITIZE_BUILD) -j $(JOBS) --target corvinet
	python3 tests/fuzz/mutation_fuzzer.py --binary $(SANITIZE_BUILD)/corvinet \
	  --seconds $(FUZZ_SECONDS) --findings $(FUZZ_FINDINGS)

format:
	clang-format -i $$(git ls-files '*.cpp' '*.h')

clean:
	rm -rf $(BUILD) $(SANITIZE_BUILD)
