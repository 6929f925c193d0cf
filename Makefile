# Quick start: `make test` builds and runs the test suite, `make run` runs the bundled example.
BUILD      ?= build
SAN_BUILD  ?= build-sanitize
BENCH_BUILD ?= build-bench
JOBS       ?= $(shell nproc 2>/dev/null || echo 2)
CMAKE      ?= cmake

.PHONY: all deps configure build test run test-sanitize bench clean

all: build

deps:
	@tools/install-deps.sh

$(BUILD)/CMakeCache.txt: | deps
	$(CMAKE) -S . -B $(BUILD) -DCMAKE_BUILD_TYPE=Release

configure: $(BUILD)/CMakeCache.txt

build: configure
	$(CMAKE) --build $(BUILD) -j $(JOBS)

test: build
	cd $(BUILD) && ctest --output-on-failure -j $(JOBS)

run: build
	$(BUILD)/geodesic_walk

test-sanitize: deps
	$(CMAKE) -S . -B $(SAN_BUILD) -DCMAKE_BUILD_TYPE=Debug -DKVCART_SANITIZE=ON
	$(CMAKE) --build $(SAN_BUILD) -j $(JOBS)
	cd $(SAN_BUILD) && ASAN_OPTIONS=detect_leaks=1 UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1 \
		ctest --output-on-failure -j $(JOBS)

bench: deps
	$(CMAKE) -S . -B $(BENCH_BUILD) -DCMAKE_BUILD_TYPE=Release -DKVCART_BENCH=ON -DKVCART_TESTS=OFF
	$(CMAKE) --build $(BENCH_BUILD) -j $(JOBS)
	$(BENCH_BUILD)/bench/kvcart_bench

clean:
	rm -rf $(BUILD) $(SAN_BUILD) $(BENCH_BUILD)
